#include "platform/addresses.h"

#include <cstring>

namespace velk::platform {

bool isAskable(const std::string& host) {
  return !host.empty() && host.find('\0') == std::string::npos;
}

std::deque<SocketAddress> addressesOf(const std::string& host, std::uint16_t port, int flags) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = flags;
  addrinfo* list = nullptr;
  std::deque<SocketAddress> addresses;
  if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &list) != 0) return addresses;
  for (const addrinfo* entry = list; entry != nullptr; entry = entry->ai_next) {
    SocketAddress address{.storage = {}, .size = static_cast<socklen_t>(entry->ai_addrlen)};
    std::memcpy(&address.storage, entry->ai_addr, entry->ai_addrlen);
    addresses.push_back(address);
  }
  freeaddrinfo(list);
  return addresses;
}

}  // namespace velk::platform
