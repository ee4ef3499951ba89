#include "values/helpers.h"

#include <algorithm>
#include <array>
#include <bit>

#include "values/numbers.h"
#include "values/result.h"
#include "values/runtime_error.h"

namespace velk::values {

Byte DECtoBCD(Byte Getal) {
  return checkedByte(Getal / 10 * 16 + Getal % 10);
}

bool IfSetBit(Byte Bytte, Byte Bitnr) {
  // 2 to the power Bitnr + 1 is a signed 32-bit number to the hosts that this rule comes from.
  if (Bitnr >= 30) throw RuntimeError(RuntimeError::overflow);
  return ((Bytte >> Bitnr) & 1) == 1;
}

std::optional<Byte> WhatBit(Byte Bytte) {
  if (Bytte == 0) return std::nullopt;
  return static_cast<Byte>(std::countr_zero(Bytte));
}

Byte LowNibbleBit(Byte Waarde) {
  return WhatBit(Waarde & 15).value_or(0);
}

Byte Minimum(Byte Getal1, Byte Getal2) {
  return std::min(Getal1, Getal2);
}

std::string LdZr(double Getal, Byte Lengte) {
  // Dropping the sign position loses the sign of a negative number: hosts rely on -7 giving "007".
  const std::string digits = std::string(Lengte, '0') + signedText(Getal).substr(1);
  return digits.substr(digits.size() - Lengte);
}

Byte ConvertErr(double ErrorNr) {
  struct Row {
    int number;
    Result result;
  };
  constexpr std::array rows{
      Row{RuntimeError::portAlreadyOpen, portAlreadyOpen}, Row{RuntimeError::deviceNotOpen, nothingToClose},
      Row{RuntimeError::portNotOpen, portNotOpen}, Row{RuntimeError::badSocketState, notConnected},
      Row{RuntimeError::socketNotClosed, notConnected}};
  static_assert(std::is_sorted(rows.begin(), rows.end(),
                               [](const Row& a, const Row& b) { return a.number < b.number; }));
  const auto* const found =
      std::find_if(rows.begin(), rows.end(), [&](const Row& row) { return row.number == ErrorNr; });
  return found == rows.end() ? otherFailure : found->result;
}

}  // namespace velk::values
