#pragma once

#include <string_view>

#include "values/bytes.h"

/// Requests and replies of the Ethernet interfaces, as bytes.
namespace velk::link {

/// Functions of TCP requests.
enum TcpFunction : Byte {
  tcpLogin = 240,   ///< data: the four password bytes
  tcpOther = 241,   ///< answered by one byte too; what it asks for is not known
  tcpMemory = 255,  ///< data: a controller frame
};

/// One request to an Ethernet interface.
struct TcpRequest {
  std::int16_t protocol = 1;
  std::int16_t id = 1;
  Byte attempts = 0;  ///< sent to interfaces of kind "Q"; here it only lengthens the wait
  Byte function = tcpMemory;
  std::string_view data;
};

/// The request as kind "Q" takes it: "VELK", protocol, id, attempts, function, 0, length, data.
Bytes requestQ(const TcpRequest& request);

/// The request as any other kind takes it: length, function class, zeros, data.
Bytes requestS(const TcpRequest& request);

/// What a reply of kind "Q" carries, or a one-byte error code. `sent` is the request as bytes; its memory
/// serves for the result. A reply too short for its own fields is run-time error 5.
Bytes replyQ(const TcpRequest& request, Bytes sent, std::string_view reply);

/// The same for any other kind.
Bytes replyS(const TcpRequest& request, std::string_view reply);

/// How the interface presents itself: "Q", "S", or an empty text for anything else.
std::string_view kindOfGreeting(std::string_view greeting);

}  // namespace velk::link
