#pragma once

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstddef>

namespace velk::cli::net {

using Descriptor = int;
using Size = std::size_t;
using AddressSize = socklen_t;
constexpr Descriptor none = -1;
constexpr int sendFlags = MSG_NOSIGNAL;

}  // namespace velk::cli::net
