#pragma once

#include <memory>
#include <string>

#include "cli/shared/stream.h"

namespace velk::cli {

/// The number under which the platform opens a serial device that users name ("/dev/ttyUSB0", "COM3").
/// Throws std::invalid_argument with a sentence when it names none.
Byte portNumber(const std::string& device);

/// A serial device on the calling thread's port, at a rate in bit/s. Run-time errors of the port are raised.
std::unique_ptr<Stream> openDevice(const std::string& device, int baud);

/// A serial line and the name by which programs open its other end.
struct NamedLine {
  std::string name;
  std::unique_ptr<Stream> stream;
};

/// A line that needs no hardware, where the platform has such. Throws std::runtime_error with a sentence.
NamedLine openPseudoLine();

}  // namespace velk::cli
