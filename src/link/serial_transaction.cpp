#include "link/serial_transaction.h"

#include <algorithm>

#include "link/wait.h"
#include "values/result.h"

namespace velk::link {
namespace {

using platform::Messages;
using platform::Source;

constexpr Seconds breakTime(0.01);
constexpr Seconds breakSettling(0.1);
constexpr Seconds echoTime(0.1);
constexpr Seconds replyTime(1.0);
constexpr Seconds resyncTime(1.0);

/// What one attempt came to.
struct Outcome {
  enum Next { done, failed, sendAgain } next;
  Bytes result;        ///< unused with sendAgain, which leaves the result of the attempt before
  bool yields = true;  ///< whether messages are dispatched before the next attempt
};

Outcome failed(Byte code) {
  return {Outcome::failed, Bytes(1, character(code))};
}

class SerialTransaction {
 public:
  SerialTransaction(Link link, const Request& request, std::string_view frame)
      : link_(link), host_(link.host), request_(request), frame_(frame) {}

  Outcome attempt() {
    host_.port().read();
    if (link_.settings.FlgBreak) sendBreak();
    host_.yield();
    return link_.settings.NoEcho ? fastAttempt() : echoAttempt();
  }

 private:
  void sendBreak() {
    host_.port().setBreak(true);
    pause(host_, breakTime, Messages::held);
    host_.port().setBreak(false);
    pause(host_, breakSettling, Messages::held);
    host_.port().read();
    link_.settings.FlgBreak = false;
  }

  Outcome echoAttempt() {
    Bytes received;
    for (const char sent : frame_) {
      received = echoOf(sent);
      if (received.empty() || received.front() != sent) return failed(echoFault);
    }
    const std::size_t length = expectedReply(request_, false);
    Bytes reply = received.substr(1);  // a frame is never empty, and its last byte has come back
    host_.yield();
    const Deadline deadline(host_, replyTime);
    collect(reply, length, deadline, deadline.whole());
    if (reply.size() != length) return failed(hasShortReply(request_.command) ? wrongWriteReply : noReply);
    // The last reply is the result even when its status is bad: callers look at its first byte.
    const bool good = reply.front() == '\0';
    return {good ? Outcome::done : Outcome::failed, std::move(reply)};
  }

  /// Sends one byte and returns what came back for it: the echo, and perhaps the start of the reply.
  Bytes echoOf(char sent) {
    Bytes received;
    host_.port().write({&sent, 1});
    host_.yield();
    await(host_, echoTime, Source::port, Messages::held, [&] {
      received = host_.port().read();
      return !received.empty();
    });
    host_.yield();
    return received;
  }

  Outcome fastAttempt() {
    host_.port().write(frame_);
    const std::size_t length = expectedReply(request_, true);
    Bytes reply;
    host_.yield();
    const Deadline deadline(host_, replyTime);
    collect(reply, length, deadline, deadline.whole());
    const bool ours = sameHeader(frame_, reply);
    if (reply.size() != length && (reply.empty() || ours)) {
      return {Outcome::failed, Bytes(1, character(noReply)), false};
    }
    if (!ours) return resynchronise(std::move(reply), length);
    if (request_.instruction == shortRequest) return {Outcome::done, Bytes(1, '\0')};
    if (byteAt(reply, headerLength) != 0) return failed(echoFault);
    return {Outcome::done, Bytes(slice(reply, headerLength, dataCount(request_.command) + 1))};
  }

  /// The interface may deliver other frames before the answer, each closed by "#": they are dropped until the
  /// reply starts as the request does, for at most one second in all. The answer found that way is not used:
  /// the frame is sent again without spending an attempt. That is the interface's protocol, not an oversight.
  Outcome resynchronise(Bytes reply, std::size_t length) {
    const Deadline deadline(host_, resyncTime);
    // A request without a known reply length waits for at least one byte, not for none.
    const std::size_t wanted = std::max<std::size_t>(length, 1);
    for (;;) {
      const std::size_t end = endOfFrame(reply);
      if (end == Bytes::npos && deadline.passed()) return failed(noMatchingReply);
      reply.erase(0, end);
      collect(reply, wanted, deadline, deadline.remaining());
      if (sameHeader(frame_, reply)) return {Outcome::sendAgain, {}};
    }
  }

  /// The position behind the first "#" that follows the header; `npos` when there is none.
  static std::size_t endOfFrame(const Bytes& reply) {
    const auto mark = reply.find('#', headerLength);
    return mark == Bytes::npos ? mark : mark + 1;
  }

  /// Appends what arrives until the reply holds `length` bytes or the deadline has passed.
  void collect(Bytes& reply, std::size_t length, const Deadline& deadline, std::chrono::nanoseconds rest) {
    if (reply.size() < length) {
      await(host_, deadline, rest, Source::port, Messages::held, [&] {
        reply += host_.port().read();
        return reply.size() >= length;
      });
    }
    host_.yield();
  }

  Link link_;
  platform::Host& host_;
  const Request& request_;
  std::string_view frame_;
};

}  // namespace

Bytes serialTransaction(Link link, const Request& request, std::string_view frame, int attempts) {
  SerialTransaction transaction(link, request, frame);
  Bytes result;
  while (attempts > 0) {
    Outcome outcome = transaction.attempt();
    if (outcome.next != Outcome::sendAgain) result = std::move(outcome.result);
    if (outcome.next == Outcome::done) attempts = 0;
    if (outcome.next == Outcome::failed) --attempts;
    if (outcome.yields) link.host.yield();
  }
  return result;
}

}  // namespace velk::link
