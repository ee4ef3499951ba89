#include "link/tcp_frames.h"

#include <algorithm>
#include <array>

#include "link/link.h"
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

bool answeredByOneByte(Byte function) {
  return function == tcpLogin || function == tcpOther;
}

Byte functionClass(Byte function) {
  if (function == tcpLogin) return 14;
  return function == tcpOther ? 15 : 13;
}

template <std::size_t size>
Bytes behind(const std::array<char, size>& header, std::string_view data) {
  Bytes text(size + data.size(), '\0');
  std::copy(data.begin(), data.end(), std::copy(header.begin(), header.end(), text.begin()));
  return text;
}

Bytes one(Byte value) {
  return Bytes(1, character(value));
}

}  // namespace

Bytes requestQ(const TcpRequest& request) {
  const bool hasLength = request.function >= tcpLogin;
  const std::array<char, headerQ> header{
      'V',
      'E',
      'L',
      'K',
      highByte(request.protocol),
      lowByte(request.protocol),
      highByte(request.id),
      lowByte(request.id),
      character(request.attempts),
      character(request.function),
      '\0',
      character(hasLength ? static_cast<int>(request.data.size() & 255) : 0)};
  return behind(header, request.data);
}

Bytes requestS(const TcpRequest& request) {
  const std::size_t length = request.data.size();
  const std::array<char, headerS> header{character(static_cast<int>(length & 255)),
                                         character(checkedByte(static_cast<long>(length >> 8))),
                                         '\0',
                                         '\0',
                                         character(functionClass(request.function)),
                                         '\0',
                                         '\0',
                                         '\0'};
  return behind(header, request.data);
}

Bytes replyQ(const TcpRequest& request, Bytes sent, std::string_view reply) {
  if (slice(reply, 0, comparedQ) != slice(sent, 0, comparedQ)) return one(echoFault);
  if (request.function == tcpMemory) {
    const std::size_t length = byteAt(reply, 10) * std::size_t{256} + byteAt(reply, 11);
    sent = slice(reply, headerQ, length);
    return sent;
  }
  if (answeredByOneByte(request.function)) return one(byteAt(reply, 11));
  if (byteAt(reply, 10) != 0) return one(byteAt(reply, 11));
  return one(0).append(slice(reply, headerQ));
}

Bytes replyS(const TcpRequest& request, std::string_view reply) {
  const std::size_t length = byteAt(reply, 1) * std::size_t{256} + byteAt(reply, 0);
  if (length + headerS != reply.size()) return one(echoFault);
  if (answeredByOneByte(request.function)) return one(byteAt(reply, headerS));
  // The three characters are what hosts expect here, not a code.
  if (request.function != tcpMemory) return "100";
  const auto frame = reply.find("*\x02", headerS);
  if (frame == std::string_view::npos) return one(noReply);
  // Behind the frame's header of six bytes: status and data, without the closing "#".
  if (reply.size() < headerS + 7) throw RuntimeError(RuntimeError::invalidArgument);
  return Bytes(slice(reply, frame + 6, reply.size() - headerS - 7));
}

std::string_view kindOfGreeting(std::string_view greeting) {
  if (slice(greeting, 0, greetingText.size()) == greetingText) return "Q";
  if (slice(greeting, greetingPrefix, greetingText.size()) == greetingText) return "S";
  return {};
}

}  // namespace velk::link
