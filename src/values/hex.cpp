#include "values/hex.h"

#include <stdexcept>

#include "values/digits.h"

namespace velk {
namespace {

std::string hexBy(std::string_view digits, std::string_view bytes, std::string_view gap) {
  std::string text;
  for (const char c : bytes) {
    if (!text.empty()) text += gap;
    text += digits[byteValue(c) >> 4];
    text += digits[byteValue(c) & 15];
  }
  return text;
}

}  // namespace

std::string hex(std::string_view bytes) {
  return hexBy("0123456789abcdef", bytes, "");
}

std::string hex(std::uint32_t number) {
  Bytes bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += character(static_cast<int>(number >> shift & 255));
  return hex(bytes);
}

std::string capitalHex(std::string_view bytes, std::string_view gap) {
  return hexBy("0123456789ABCDEF", bytes, gap);
}

std::optional<Byte> byteOfHex(std::string_view digits) {
  return digits.size() == 2 ? wholeNumber<Byte>(digits, 16) : std::nullopt;
}

Bytes bytesOfHex(std::string_view digits) {
  Bytes bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    const std::string_view pair = digits.substr(i, 2);
    const auto byte = byteOfHex(pair);
    if (!byte) throw std::invalid_argument("\"" + std::string(pair) + "\" is no pair of hexadecimal digits");
    bytes += character(*byte);
  }
  return bytes;
}

}  // namespace velk
