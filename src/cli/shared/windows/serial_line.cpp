#include "cli/shared/serial_line.h"

#include <stdexcept>

#include "values/digits.h"
#include "values/numbers.h"

namespace velk::cli {

Byte portNumber(const std::string& device) {
  constexpr std::size_t prefix = 3;
  const auto number = wholeNumber<Byte>(slice(device, prefix));
  if (!equalsIgnoringCase(slice(device, 0, prefix), "COM") || number.value_or(0) == 0) {
    throw std::invalid_argument("a serial device is COM1 to COM255, not \"" + device + "\"");
  }
  return *number;
}

NamedLine openPseudoLine() {
  throw std::runtime_error("a serial line needs a device here, for example COM3");
}

}  // namespace velk::cli
