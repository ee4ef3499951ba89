#include "simulator/ethernet_sessions.h"

#include <algorithm>

#include "link/tcp_frames.h"
#include "simulator/serial_sessions.h"

namespace velk::simulator {
namespace {

constexpr std::string_view greeting = "Welcome to VELK TCP/IP";

// --- Kind "Q": "VELK", protocol (2), id (2), attempts, function, length (2, high byte first), data.

constexpr std::string_view mark = "VELK";
constexpr std::size_t headerQ = 12;
constexpr std::size_t repeatedQ = 10;
constexpr std::size_t idLow = 7;
constexpr std::size_t functionAt = 9;
constexpr std::size_t lengthLow = 11;

/// The longest start of `text` that may become a header; how many bytes to skip when it is no start of one.
std::size_t bytesBeforeMark(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string_view rest = text.substr(i, mark.size());
    if (rest == mark.substr(0, rest.size())) return i;
  }
  return text.size();
}

Bytes replyQ(std::string_view header, std::size_t length, std::string_view payload, const Plan& plan) {
  Bytes text(header.substr(0, repeatedQ));
  if (plan.wrongHeader) text[idLow] = character(~text[idLow] & 255);
  return (text += character(static_cast<int>(length >> 8))) +=
         character(static_cast<int>(length & 255)) + Bytes(payload);
}

/// A reply to somebody else's request.
Bytes foreignQ(std::string_view header) {
  return replyQ(header, 1, std::string_view("\0", 1), {.wrongHeader = true});
}

// --- Kind "S": length (2, low byte first), 0, 0, function class, 0, 0, 0, data.

constexpr std::size_t headerS = 8;
constexpr std::size_t classAt = 4;
constexpr std::string_view zeroPositions{"\2\3\5\6\7"};
constexpr std::size_t longestS = 1024;

enum ClassS : Byte { memoryClass = 13, loginClass = 14, otherClass = 15 };

std::size_t lengthS(std::string_view header) {
  return byteValue(header[1]) * std::size_t{256} + byteValue(header[0]);
}

/// Whether a text may be the start of a request, as far as it goes.
bool mayBeHeaderS(std::string_view text) {
  const bool zeros = std::all_of(zeroPositions.begin(), zeroPositions.end(), [&](char position) {
    return byteValue(position) >= text.size() || text[byteValue(position)] == '\0';
  });
  if (!zeros || (text.size() > 1 && lengthS(text) > longestS)) return false;
  if (text.size() <= classAt) return true;
  const Byte functionClass = byteValue(text[classAt]);
  return functionClass >= memoryClass && functionClass <= otherClass;
}

Bytes replyS(std::string_view header, std::string_view payload) {
  const auto size = static_cast<int>(payload.size());
  return Bytes{character(size & 255), character(size >> 8)}
      .append(header.substr(2, headerS - 2))
      .append(payload);
}

}  // namespace

Deliveries EthernetQSession::connected() {
  return {{.bytes = Bytes(greeting)}};
}

std::optional<std::size_t> EthernetQSession::take(std::string_view buffer, Deliveries& out) {
  if (const std::size_t garbage = bytesBeforeMark(buffer); garbage > 0) return garbage;
  if (buffer.size() < headerQ) return std::nullopt;
  const std::size_t length = headerQ + byteValue(buffer[lengthLow]);
  if (buffer.size() < length) return std::nullopt;
  const std::string_view header = buffer.substr(0, headerQ);
  const std::string_view data = buffer.substr(headerQ, length - headerQ);
  switch (byteValue(buffer[functionAt])) {
    case link::tcpLogin:
      append(out, logIn(header, data));
      break;
    case link::tcpOther:
      append(out, deliver(loginPlan(), replyQ(header, carriedOut, {}, {}), foreignQ(header)));
      break;
    case link::tcpMemory:
      append(out, memoryRequest(header, data));
      break;
    default: {
      // Other functions: an error mark and a code where requests have their length.
      constexpr std::size_t failed = 0x100;
      append(out, deliver(nextPlan(), replyQ(header, failed + refused, {}, {}), foreignQ(header)));
    }
  }
  return length;
}

Deliveries EthernetQSession::logIn(std::string_view header, std::string_view password) {
  const Plan plan = loginPlan();
  const Byte result = plan.status.value_or(password == options().password ? carriedOut : refused);
  loggedIn_ = result == carriedOut;
  note("login -> " + withFaults(loggedIn_ ? "accepted" : "refused", plan));
  return deliver(plan, replyQ(header, result, {}, plan), foreignQ(header));
}

Deliveries EthernetQSession::memoryRequest(std::string_view header, std::string_view frame) {
  const Plan plan = nextPlan();
  const auto reply = [&](const Bytes& payload) {
    return deliver(plan, replyQ(header, payload.size(), payload, plan), foreignQ(header));
  };
  const auto refuse = [&](const std::string& why) {
    note(why + " -> " + withFaults("status 1", plan));
    return reply(Bytes(1, character(refused)));
  };
  constexpr std::size_t request = 2;  // behind "/" and the bus address
  if (!loggedIn_) return refuse("not logged in");
  if (frame.size() <= request || frame.front() != '/') return refuse("no memory request");
  if (frame.size() != request + requestLength(byteValue(frame[request]))) return refuse("no memory request");
  if (byteValue(frame[1]) != options().busAddress) return {};
  return reply(answer(requestFrom(frame.substr(request)), plan).bytes());
}

Deliveries EthernetSSession::connected() {
  return {{.bytes = "VELK-S: " + Bytes(greeting)}};
}

std::optional<std::size_t> EthernetSSession::take(std::string_view buffer, Deliveries& out) {
  if (!mayBeHeaderS(buffer)) return firstByte;
  if (buffer.size() < headerS) return std::nullopt;
  const std::size_t length = headerS + lengthS(buffer);
  if (buffer.size() < length) return std::nullopt;
  const std::string_view header = buffer.substr(0, headerS);
  if (byteValue(buffer[classAt]) == memoryClass) {
    append(out, memoryRequest(header, buffer.substr(headerS, length - headerS)));
  } else {
    append(out, deliver(loginPlan(), replyS(header, std::string_view("\0", 1)), {}));
  }
  return length;
}

Deliveries EthernetSSession::memoryRequest(std::string_view header, std::string_view frame) {
  const Byte address = options().busAddress;
  if (frame.substr(0, 2) != "*\x02" || memoryFrameLength(frame) != frame.size()) return {};
  const auto found = fastRequestIn(frame);
  if (!found || found->busAddress != address) return {};
  const Plan plan = nextPlan();
  const Reply reply = answer(found->request, plan);
  return deliver(plan, replyS(header, fastReply(frame, reply, plan)), replyS(header, foreignFrame(address)));
}

}  // namespace velk::simulator
