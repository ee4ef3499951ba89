#pragma once

#include <bit>
#include <optional>

#include "values/bytes.h"
#include "values/runtime_error.h"

namespace velk {

/// Whether bit `number` of `byte` is 1. False for bits 8 to 29; run-time error 6 from bit 30 on.
constexpr bool testBit(Byte byte, Byte number) {
  // 2 to the power `number` + 1 is a signed 32-bit number to the hosts that this rule comes from.
  if (number >= 30) throw RuntimeError(RuntimeError::overflow);
  return ((byte >> number) & 1) == 1;
}

/// The number (0 to 7) of the lowest bit of `byte` that is 1; nothing when no bit is.
constexpr std::optional<Byte> lowestBit(Byte byte) {
  if (byte == 0) return std::nullopt;
  return static_cast<Byte>(std::countr_zero(byte));
}

}  // namespace velk
