#include "cli/velk/trace/wire.h"

#include <algorithm>

#include "cli/shared/escapes.h"
#include "link/tcp_frames.h"
#include "simulator/trace.h"
#include "values/hex.h"

namespace velk::cli {
namespace {

constexpr std::size_t headerQ = 12;
constexpr std::size_t repeatedQ = 10;
constexpr std::size_t functionInQ = 9;
constexpr std::size_t headerS = 8;
constexpr std::size_t classInS = 4;

enum ClassS : Byte { memoryClass = 13, loginClass = 14 };

/// A request from its command byte on; none when its head is not whole.
std::optional<TracedRequest> requestIn(std::string_view text) {
  if (text.size() < 3) return std::nullopt;
  return TracedRequest{.command = byteValue(text[0]),
                       .high = byteValue(text[1]),
                       .low = byteValue(text[2]),
                       .data = Bytes(text.substr(3))};
}

/// That of a frame which has so many bytes in front of it and at its end.
std::optional<TracedRequest> requestInside(std::string_view frame, std::size_t front, std::size_t end) {
  if (frame.size() < front + end) return std::nullopt;
  return requestIn(frame.substr(front, frame.size() - front - end));
}

std::optional<TracedRequest> requestInFast(std::string_view frame) {
  if (!frame.starts_with("*\x02") || frame.back() != '#') return std::nullopt;
  return requestInside(frame, 3, 1);
}

std::string bytesAs(const std::string& what, std::string_view bytes) {
  return what + " " + capitalHex(bytes, " ");
}

/// What a frame that is no memory request is.
std::string nameOfFast(std::string_view frame) {
  const bool isInstruction = frame.size() > 2 && frame.front() == '*' && frame.back() == '#';
  return isInstruction ? bytesAs("instruction", frame.substr(1, frame.size() - 2)) : bytesAs("sent", frame);
}

simulator::Reply replyOf(const Bytes& payload) {
  return {.status = byteAt(payload, 0), .data = payload.substr(1)};
}

}  // namespace

void Wire::sentToSocket(Time now, std::string_view bytes) {
  Pending pending{.begun = now, .sent = Bytes(bytes)};
  if (bytes.starts_with("VELK") && bytes.size() >= headerQ) {
    const Byte function = byteValue(bytes[functionInQ]);
    const std::string_view data = bytes.substr(headerQ);
    pending.isLogin = function == link::tcpLogin;
    if (function == link::tcpMemory && data.starts_with('/')) pending.request = requestInside(data, 2, 0);
    pending.text = bytesAs("function " + std::to_string(function), data);
  } else {
    const std::string_view frame = slice(bytes, headerS);
    const Byte which = bytes.size() < headerS ? Byte{0} : byteValue(bytes[classInS]);
    pending.kind = Kind::s;
    pending.isLogin = which == loginClass;
    if (which == memoryClass) pending.request = requestInFast(frame);
    pending.text = which == memoryClass ? nameOfFast(frame) : bytesAs("sent", bytes);
  }
  if (pending.isLogin) pending.text = "login";
  begin(std::move(pending));
}

void Wire::sentToPort(Time now, std::string_view bytes) {
  // Echo mode alone sends single bytes.
  if (bytes.size() != 1) {
    return begin({.begun = now,
                  .kind = Kind::fast,
                  .sent = Bytes(bytes),
                  .request = requestInFast(bytes),
                  .text = nameOfFast(bytes)});
  }
  if (!echoGoesOn()) begin({.begun = now, .kind = Kind::echo});
  pending_->sent += bytes;
  pending_->received.clear();
  pending_->pieces = 0;
  pending_->request = requestIn(slice(pending_->sent, 1));
  pending_->text = bytesAs("sent", pending_->sent);
}

/// The next byte of a frame is sent when one piece came behind the last one that starts with its echo. In front
/// of another attempt the port is looked at once more.
bool Wire::echoGoesOn() const {
  return pending_ && pending_->kind == Kind::echo && pending_->pieces == 1 && !pending_->isOver &&
         pending_->received.front() == pending_->sent.back();
}

void Wire::begin(Pending pending) {
  giveUp("no reply");
  pending_ = std::move(pending);
}

void Wire::received(Time now, std::string_view bytes, bool awaited) {
  if (bytes.empty()) {
    if (pending_ && pending_->pieces > 0) pending_->isOver = true;
    return;
  }
  if (!pending_) {
    const bool isGreeting = awaited && !link::kindOfGreeting(bytes).empty();
    return listener_(
        {now, std::nullopt, isGreeting ? "greeting " + escaped(bytes) : bytesAs("stray", bytes)});
  }
  ++pending_->pieces;
  pending_->received += bytes;
  pending_->arrived = now;
  pending_->late = !awaited;
  tryToFinish();
}

/// Status and data of the reply, once that is whole and answers the request.
std::optional<Bytes> Wire::payload() const {
  const Bytes& got = pending_->received;
  const Bytes& sent = pending_->sent;
  const auto size = [&](bool fast) {
    return link::expectedReply({.command = pending_->request->command, .high = 0, .low = 0, .data = {}},
                               fast);
  };
  switch (pending_->kind) {
    case Kind::q: {
      const bool answers = got.size() >= headerQ && slice(got, 0, repeatedQ) == slice(sent, 0, repeatedQ);
      if (!answers || byteAt(got, 10) * 256U + byteAt(got, 11) != got.size() - headerQ) return std::nullopt;
      return got.substr(headerQ);
    }
    case Kind::s: {
      const auto frame = got.find("*\x02", headerS);
      constexpr std::size_t around = headerS + link::headerLength + 1;
      if (got.size() <= around || frame != headerS) return std::nullopt;
      if (byteAt(got, 1) * 256U + byteAt(got, 0) != got.size() - headerS) return std::nullopt;
      return got.substr(headerS + link::headerLength, got.size() - around);
    }
    case Kind::fast:
      if (got.size() != size(true) || !link::sameHeader(sent, got)) return std::nullopt;
      return got.substr(link::headerLength, got.size() - link::headerLength - 1);
    case Kind::echo: {
      const TracedRequest& request = *pending_->request;
      const bool isWhole = request.data.size() >= (request.writes() ? request.count() : 0);
      if (!isWhole || got.size() != size(false) + 1 || got.front() != sent.back()) return std::nullopt;
      return got.substr(1);
    }
  }
  return std::nullopt;
}

void Wire::tryToFinish() {
  if (pending_->isLogin) {
    // Nothing of what came is told as it is: it may repeat what was sent.
    const std::size_t result = pending_->kind == Kind::q ? headerQ - 1 : headerS;
    if (pending_->received.size() <= result) return finish({}, "an odd reply");
    return finish({}, pending_->received[result] == '\0' ? "accepted" : "refused");
  }
  if (pending_->request) {
    if (const auto bytes = payload(); bytes && !bytes->empty()) {
      const simulator::Reply reply = replyOf(*bytes);
      return finish(reply, simulator::describe(reply));
    }
  }
  // Over TCP one fetch is the reply, whatever it is.
  if (pending_->kind == Kind::q || pending_->kind == Kind::s) finish({}, oddity());
}

std::string Wire::oddity() const {
  return bytesAs(pending_->request ? "an odd reply:" : "answered", pending_->received);
}

/// What was wrong with the echo of the last byte that was sent; empty when nothing was.
std::string Wire::echoFault() const {
  if (pending_->kind != Kind::echo) return {};
  const std::string byte = "of byte " + std::to_string(pending_->sent.size());
  if (pending_->received.empty()) return "no echo " + byte;
  if (pending_->received.front() == pending_->sent.back()) return {};
  return bytesAs("a wrong echo " + byte + ":", pending_->received);
}

void Wire::giveUp(const std::string& why) {
  if (!pending_) return;
  if (const std::string fault = echoFault(); !fault.empty()) {
    pending_->request.reset();  // the frame may have had more bytes
    return finish({}, fault);
  }
  // The echo of the last byte is no reply.
  if (pending_->kind == Kind::echo) pending_->received.erase(0, 1);
  finish({}, pending_->received.empty() ? why : oddity());
}

void Wire::finish(std::optional<simulator::Reply> reply, const std::string& outcome) {
  const Pending done = *std::move(pending_);
  pending_.reset();
  WireEvent event{.begun = done.begun, .text = done.request ? done.request->text() : done.text};
  event.text += " -> " + outcome + (done.late ? " (late)" : "");
  if (!done.received.empty()) event.took = done.arrived - done.begun;
  if (done.request) event.exchange = Exchange{*done.request, std::move(reply), done.late};
  listener_(event);
}

void Wire::note(Time now, const std::string& text) {
  giveUp("no reply");
  listener_({now, std::nullopt, text});
}

}  // namespace velk::cli
