#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "system_sockets.h"

namespace velk::platform {

/// An address to connect to.
struct SocketAddress {
  sockaddr_storage storage{};
  socklen_t size{};

  [[nodiscard]] const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&storage); }
};

/// Whether a host is a name to ask for: not an empty one, which a system may take for this computer, nor one
/// with a zero byte inside.
bool isAskable(const std::string& host);

/// The addresses of a host, in the order of preference; none when the name is unknown. `flags` as for
/// getaddrinfo.
std::deque<SocketAddress> addressesOf(const std::string& host, std::uint16_t port, int flags);

}  // namespace velk::platform
