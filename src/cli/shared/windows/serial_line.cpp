#include "cli/shared/serial_line.h"

#include <charconv>
#include <stdexcept>

#include "values/numbers.h"

namespace velk::cli {

Byte portNumber(const std::string& device) {
  constexpr std::size_t prefix = 3;
  int number = 0;
  const char* const end = device.data() + device.size();
  const bool named = equalsIgnoringCase(std::string_view(device).substr(0, prefix), "COM");
  if (!named || std::from_chars(device.data() + prefix, end, number).ptr != end || number < 1 ||
      number > 255) {
    throw std::invalid_argument("a serial device is COM1 to COM255, not \"" + device + "\"");
  }
  return static_cast<Byte>(number);
}

NamedLine openPseudoLine() {
  throw std::runtime_error("a serial line needs a device here, for example COM3");
}

}  // namespace velk::cli
