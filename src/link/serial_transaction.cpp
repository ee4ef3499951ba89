#include "link/serial_transaction.h"

#include <algorithm>

#include "link/wait.h"
#include "values/result.h"

namespace velk::link {
namespace {

using platform::Messages;
using platform::Source;

constexpr Byte usualAttempts = 3;
constexpr Seconds breakTime(0.01);
constexpr Seconds breakSettling(0.1);
constexpr Seconds echoTime(0.1);   // of each byte
constexpr Seconds replyTime(1.0);  // of an attempt
constexpr Seconds resyncTime(1.0);

enum class Verdict : Byte {
  answered,
  failed,
  unanswered,     ///< failed too; the next attempt follows without a look at messages
  resynchronised  ///< no result yet: the request is to be sent again
};

/// What one attempt came to.
struct Attempt {
  Verdict verdict;
  Bytes result;
};

Attempt failed(Byte code, Verdict verdict = Verdict::failed) {
  return {verdict, Bytes(1, character(code))};
}

class SerialTransaction {
 public:
  SerialTransaction(Link link, const Request& request, std::string_view frame)
      : link_(link), host_(link.host), request_(request), frame_(frame) {}

  Attempt attempt() {
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

  Attempt echoAttempt() {
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
    const Verdict verdict = reply.front() == '\0' ? Verdict::answered : Verdict::failed;
    return {verdict, std::move(reply)};
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

  Attempt fastAttempt() {
    host_.port().write(frame_);
    const std::size_t length = expectedReply(request_, true);
    Bytes reply;
    host_.yield();
    const Deadline deadline(host_, replyTime);
    collect(reply, length, deadline, deadline.whole());
    if (reply.empty() && length != 0) return failed(noReply, Verdict::unanswered);
    if (!sameHeader(frame_, reply)) return resynchronise(std::move(reply), length);
    if (reply.size() != length) return failed(noReply, Verdict::unanswered);
    if (request_.instruction == shortRequest) return {Verdict::answered, Bytes(1, '\0')};
    if (byteAt(reply, headerLength) != 0) return failed(echoFault);
    return {Verdict::answered, Bytes(slice(reply, headerLength, dataCount(request_.command) + 1))};
  }

  /// The interface may deliver other frames before the answer, each closed by "#": they are dropped until the
  /// reply starts as the request does, for at most one second in all. The answer found that way is not used:
  /// the frame is sent again without spending an attempt. That is the interface's protocol, not an oversight.
  Attempt resynchronise(Bytes reply, std::size_t length) {
    const Deadline deadline(host_, resyncTime);
    // A request without a known reply length waits for at least one byte, not for none.
    const std::size_t wanted = std::max<std::size_t>(length, 1);
    do {
      if (!dropFrame(reply) && deadline.passed()) return failed(noMatchingReply);
      collect(reply, wanted, deadline, deadline.remaining());
    } while (!sameHeader(frame_, reply));
    return {Verdict::resynchronised, {}};
  }

  /// Drops all up to the first "#" behind a header; without one all there is, and returns false.
  static bool dropFrame(Bytes& reply) {
    const auto mark = reply.find('#', headerLength);
    const bool found = mark != Bytes::npos;
    reply.erase(0, found ? mark + 1 : mark);
    return found;
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

Bytes serialTransaction(Link link, const Request& request, std::string_view frame, Byte attempts) {
  SerialTransaction transaction(link, request, frame);
  int left = attempts == 0 ? usualAttempts : attempts;
  for (;;) {
    Attempt attempt = transaction.attempt();
    if (attempt.verdict != Verdict::unanswered) link.host.yield();
    if (attempt.verdict == Verdict::resynchronised) continue;
    if (attempt.verdict == Verdict::answered || --left == 0) return std::move(attempt.result);
  }
}

}  // namespace velk::link
