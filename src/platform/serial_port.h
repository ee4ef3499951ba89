#pragma once

#include <string>
#include <string_view>

#include "values/bytes.h"

namespace velk::platform {

/// What a settings text such as " 9600,N,8,1" says.
struct SerialSettings {
  int baud = 9600;
  char parity = 'N';  ///< 'N', 'E', 'O', 'M' or 'S'
  int dataBits = 8;   ///< 5 to 8
  double stopBits = 1;
};

/// Reads a settings text: baud rate, parity, data bits and stop bits between commas. Run-time error 380 when
/// it names something that no port can be set to.
SerialSettings parseSettings(std::string_view text);

/// One serial port, used by polling. All failures are run-time errors.
class SerialPort {
 public:
  virtual ~SerialPort() = default;

  /// Opens port `number` (1 to 255) with RTS on and no handshake. Errors: 8005 already open, here or in
  /// another program; 8002 no such port; 380 settings that the port does not take.
  virtual void open(int number, const SerialSettings& settings) = 0;

  /// Closes the port. Error 8012 when it is not open.
  virtual void close() = 0;

  [[nodiscard]] virtual bool isOpen() const = 0;

  /// What has been received and not read yet, up to a bound that a flood alone reaches; empty when nothing is
  /// waiting. The bytes stay until the next call.
  /// Errors: 8018 not open, 8020 the device failed or is gone.
  virtual std::string_view read() = 0;

  /// Sends the bytes. Errors: 8018 not open, 8019 the device takes nothing for a second, 8020 the device
  /// failed.
  virtual void write(std::string_view bytes) = 0;

  /// Starts or ends a line break. Nothing happens on a line whose driver knows no break, as with many USB
  /// devices. Errors as `read`.
  virtual void setBreak(bool on) = 0;
};

}  // namespace velk::platform
