#pragma once

#include "platform/serial_port.h"
#include "platform/windows/overlapped_io.h"

namespace velk::platform {

/// A serial port through overlapped reads and writes. Port number n is COMn unless `mapPort` says otherwise.
class WindowsSerialPort final : public SerialPort {
 public:
  WindowsSerialPort() = default;
  ~WindowsSerialPort() override;
  WindowsSerialPort(const WindowsSerialPort&) = delete;
  WindowsSerialPort& operator=(const WindowsSerialPort&) = delete;

  void open(int number, const SerialSettings& settings) override;
  void close() override;
  [[nodiscard]] bool isOpen() const override { return static_cast<bool>(port_); }
  std::string_view read() override;
  void write(std::string_view bytes) override;
  void setBreak(bool on) override;

  /// Signalled once something has been received or the device has failed; null when the port is not open.
  [[nodiscard]] HANDLE event() const { return port_ ? reading_.event() : nullptr; }

 private:
  void requireOpen() const;
  void release();
  void writePiece(std::string_view piece);
  [[nodiscard]] std::size_t waiting() const;

  Handle port_;
  Bytes received_;
  OverlappedIo reading_;  ///< always running while the port is open; ends with the first byte that comes
  OverlappedIo writing_;
  DWORD byteTime_ = 0;  ///< ms that one byte takes on the line, rounded up
};

}  // namespace velk::platform
