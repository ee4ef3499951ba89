#pragma once

// In this order: the first defines what the second extends.
#include <winsock2.h>
#include <ws2tcpip.h>

namespace velk::cli::net {

using Descriptor = SOCKET;
using Size = int;
using AddressSize = int;
constexpr Descriptor none = INVALID_SOCKET;
constexpr int sendFlags = 0;

}  // namespace velk::cli::net
