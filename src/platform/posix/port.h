#pragma once

#include "platform/posix/fd.h"
#include "platform/posix/low_latency.h"
#include "platform/serial_port.h"

namespace velk::platform {

/// A serial port through termios. Port number n is /dev/ttyS(n-1) unless `mapPort` says otherwise.
class PosixSerialPort final : public SerialPort {
 public:
  ~PosixSerialPort() override;
  PosixSerialPort() = default;
  PosixSerialPort(const PosixSerialPort&) = delete;
  PosixSerialPort& operator=(const PosixSerialPort&) = delete;

  void open(int number, const SerialSettings& settings) override;
  void close() override;
  [[nodiscard]] bool isOpen() const override { return static_cast<bool>(fd_); }
  std::string_view read() override;
  void write(std::string_view bytes) override;
  void setBreak(bool on) override;

  /// The descriptor to poll, -1 when the port is not open.
  [[nodiscard]] int descriptor() const { return fd_.get(); }

 private:
  void requireOpen() const;

  Fd fd_;
  LowLatency lowLatency_;  ///< ends before the descriptor is closed
  Bytes buffer_;
};

}  // namespace velk::platform
