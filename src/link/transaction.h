#pragma once

#include <string_view>

#include "link/frames.h"
#include "link/link.h"

namespace velk::link {

/// One request over the link that the settings select, with its attempts. Returns the status byte and the
/// data bytes, or one of the one-byte codes of `Result`, 251 to 254. Over a serial line `attempts` 0 means 3;
/// over TCP there is one, see `TcpRequest`.
Bytes tranCeiv(Link link, const Request& request, Byte attempts = 0);

/// Reads `count` bytes (1 to 16; see `commandByte` for others) at an address.
Bytes readCom(Link link, Byte count, Byte high, Byte low, std::string_view direction, Byte attempts);

/// Writes `data` at an address. The length of `data` is not checked against `count`.
Bytes writeCom(Link link, Byte count, Byte high, Byte low, std::string_view direction, std::string_view data,
               Byte attempts);

}  // namespace velk::link
