#pragma once

#include <chrono>
#include <cstdint>

#include "platform/serial_port.h"
#include "platform/socket.h"

namespace velk::platform {

/// What a wait watches besides its deadline.
enum class Source : std::uint8_t { nothing, port, socket };

/// Whether the messages of the host's windows are dispatched during a wait.
enum class Messages : std::uint8_t { held, dispatched };

/// The only door to time and to the outside: a clock, the message loop, one serial port and one socket.
class Host {
 public:
  virtual ~Host() = default;

  /// Seconds since local midnight.
  virtual float clock() = 0;

  /// A clock that never jumps; only differences mean something.
  virtual std::chrono::nanoseconds steady() = 0;

  /// Dispatches the messages that wait for the host's windows.
  virtual void yield() = 0;

  /// Blocks in the operating system until the source has news, the time has passed, or, with
  /// `Messages::dispatched`, messages came and were dispatched. May return early without any of these.
  virtual void block(Source source, std::chrono::nanoseconds longest, Messages messages) = 0;

  virtual SerialPort& port() = 0;
  virtual Socket& socket() = 0;
};

/// The host of the calling thread. It is made on first use, is shared by all objects of the thread, and its
/// port and socket live until the thread ends.
Host& threadHost();

/// How many ports and sockets are open in the whole process: the component must stay loaded while any is.
int openDevices();

/// Says which device serial port `number` is, for hosts whose ports have no fixed numbers. An empty path
/// restores the number's own meaning.
void mapPort(int number, const std::string& devicePath);

}  // namespace velk::platform
