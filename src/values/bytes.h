#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "values/runtime_error.h"

namespace velk {

using Byte = std::uint8_t;

/// A byte string: each character holds one byte value (0 to 255); the length is the number of bytes.
using Bytes = std::string;

/// The character that carries a byte value.
constexpr char character(int value) {
  return static_cast<char>(static_cast<unsigned char>(value));
}

/// The byte value that a character carries.
constexpr Byte byteValue(char c) {
  return static_cast<Byte>(c);
}

/// The byte at `index` (from 0); run-time error 5 (invalid argument) when the string is shorter.
Byte byteAt(std::string_view text, std::size_t index);

/// Up to `count` bytes from `index` (from 0) on; fewer, or none, where the string ends earlier.
constexpr std::string_view slice(std::string_view text, std::size_t index,
                                 std::size_t count = std::string_view::npos) {
  return text.substr(std::min(index, text.size()), count);
}

/// The text cut, or padded on the right with `fill`, to exactly `size` bytes.
Bytes padded(std::string_view text, std::size_t size, char fill = ' ');

/// `value` as a byte; run-time error 6 (overflow) outside 0 to 255.
constexpr Byte checkedByte(long value) {
  if (value < 0 || value > 255) throw RuntimeError(RuntimeError::overflow);
  return static_cast<Byte>(value);
}

}  // namespace velk
