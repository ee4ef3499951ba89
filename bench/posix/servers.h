#pragma once

#include <cstdint>
#include <string>

#include "posix/child.h"

namespace velk::bench {

struct TcpServer {
  std::uint16_t port;
  Child process;
};

struct LineServer {
  std::string device;  ///< the end that clients open
  Child process;
};

/// A server of Ethernet kind "Q" on 127.0.0.1, a thread for each connection, without delays of its own.
TcpServer startTcpServer();

/// How a line carries bytes.
enum class Pace : std::uint8_t { full, baud9600 };

/// The far end of a pseudo terminal in fast mode, and in echo mode.
LineServer startFastServer(Pace pace);
LineServer startEchoServer(Pace pace);

}  // namespace velk::bench
