#include "link/tcp_frames.h"

#include <algorithm>

#include "link/frames.h"
#include "values/result.h"
#include "values/runtime_error.h"

namespace velk::link {
namespace {

constexpr std::size_t headerQ = 12;
constexpr std::size_t comparedQ = 10;
constexpr std::size_t headerS = 8;
constexpr std::string_view greetingText = "Welcome to VELK TCP/IP";
constexpr std::size_t greetingPrefix = 8;

constexpr char highByte(std::int16_t number) {
  return character(static_cast<std::uint16_t>(number) >> 8);
}

constexpr char lowByte(std::int16_t number) {
  return character(number & 255);
}

constexpr std::size_t numberOf(Byte high, Byte low) {
  return high * std::size_t{256} + low;
}

Byte functionClass(Byte function) {
  if (function == tcpLogin) return 14;
  return function == tcpOther ? 15 : 13;
}

template <std::size_t size>
Bytes behind(const char (&header)[size], std::string_view data) {
  Bytes text(size + data.size(), '\0');
  std::copy(data.begin(), data.end(), std::copy(header, header + size, text.begin()));
  return text;
}

Bytes one(Byte value) {
  return Bytes(1, character(value));
}

/// Status and data of the frame in a reply, which has a header of six bytes and a closing "#".
Bytes insideFrame(std::string_view reply) {
  constexpr std::size_t around = headerLength + 1;
  const auto frame = reply.find("*\x02", headerS);
  if (frame == std::string_view::npos) return one(noReply);
  if (reply.size() < headerS + around) throw RuntimeError(RuntimeError::invalidArgument);
  return Bytes(slice(reply, frame + headerLength, reply.size() - headerS - around));
}

}  // namespace

Bytes requestQ(const TcpRequest& request) {
  const bool hasLength = request.function >= tcpLogin;
  return behind(
      {'V', 'E', 'L', 'K', highByte(request.protocol), lowByte(request.protocol), highByte(request.id),
       lowByte(request.id), character(request.attempts), character(request.function), '\0',
       character(hasLength ? static_cast<int>(request.data.size() & 255) : 0)},
      request.data);
}

Bytes requestS(const TcpRequest& request) {
  const std::size_t length = request.data.size();
  return behind(
      {character(static_cast<int>(length & 255)), character(checkedByte(static_cast<long>(length >> 8))),
       '\0', '\0', character(functionClass(request.function)), '\0', '\0', '\0'},
      request.data);
}

Bytes replyQ(const TcpRequest& request, Bytes sent, std::string_view reply) {
  if (slice(reply, 0, comparedQ) != slice(sent, 0, comparedQ)) return one(echoFault);
  switch (request.function) {
    case tcpMemory:
      sent = slice(reply, headerQ, numberOf(byteAt(reply, 10), byteAt(reply, 11)));
      return sent;
    case tcpLogin:
    case tcpOther:
      return one(byteAt(reply, 11));
    default:
      return byteAt(reply, 10) != 0 ? one(byteAt(reply, 11)) : one(0).append(slice(reply, headerQ));
  }
}

Bytes replyS(const TcpRequest& request, std::string_view reply) {
  const std::size_t length = numberOf(byteAt(reply, 1), byteAt(reply, 0));
  if (length + headerS != reply.size()) return one(echoFault);
  switch (request.function) {
    case tcpMemory:
      return insideFrame(reply);
    case tcpLogin:
    case tcpOther:
      return one(byteAt(reply, headerS));
    default:
      return "100";  // the three characters are what hosts expect here, not a code
  }
}

std::string_view kindOfGreeting(std::string_view greeting) {
  if (slice(greeting, 0, greetingText.size()) == greetingText) return "Q";
  if (slice(greeting, greetingPrefix, greetingText.size()) == greetingText) return "S";
  return {};
}

}  // namespace velk::link
