#include "platform/serial_port.h"

#include <array>

#include "values/numbers.h"
#include "values/runtime_error.h"

namespace velk::platform {
namespace {

constexpr std::size_t fieldCount = 4;

std::array<std::string_view, fieldCount> split(std::string_view text) {
  std::array<std::string_view, fieldCount> fields;
  for (std::size_t i = 0; i < fieldCount; ++i) {
    const auto comma = text.find(',');
    const bool last = i + 1 == fieldCount;
    if (last != (comma == std::string_view::npos)) throw RuntimeError(RuntimeError::invalidPropertyValue);
    fields[i] = text.substr(0, comma);
    if (!last) text.remove_prefix(comma + 1);
  }
  return fields;
}

double numberIn(std::string_view text, double low, double high) {
  const double number = leadingNumber(text);
  if (number < low || number > high) throw RuntimeError(RuntimeError::invalidPropertyValue);
  return number;
}

}  // namespace

SerialSettings parseSettings(std::string_view text) {
  const auto [baud, parity, dataBits, stopBits] = split(text);
  if (parity.size() != 1 || std::string_view("NEOMS").find(parity) == std::string_view::npos) {
    throw RuntimeError(RuntimeError::invalidPropertyValue);
  }
  return {.baud = static_cast<int>(numberIn(baud, 1, 4'000'000)),
          .parity = parity.front(),
          .dataBits = static_cast<int>(numberIn(dataBits, 5, 8)),
          .stopBits = numberIn(stopBits, 1, 2)};
}

}  // namespace velk::platform
