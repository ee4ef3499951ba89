#include "cli/escapes.h"

#include <charconv>
#include <stdexcept>

namespace velk::cli {
namespace {

bool isPrintable(char c) {
  return c >= ' ' && c <= '~';
}

std::string escapedByte(Byte value) {
  constexpr std::string_view digits = "0123456789abcdef";
  return {'\\', 'x', digits[value >> 4], digits[value & 15]};
}

}  // namespace

std::string escaped(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) {
    if (c == '\\') {
      text += "\\\\";
    } else if (isPrintable(c)) {
      text += c;
    } else {
      text += escapedByte(byteValue(c));
    }
  }
  return text;
}

Bytes unescaped(std::string_view text) {
  constexpr std::size_t hexEscape = 4;
  Bytes bytes;
  while (!text.empty()) {
    std::size_t used = 1;
    char c = text.front();
    if (text.substr(0, 2) == "\\\\") {
      used = 2;
    } else if (c == '\\') {
      int value = 0;
      const std::string_view escape = text.substr(0, hexEscape);
      const char* const end = escape.data() + escape.size();
      const bool valid = escape.size() == hexEscape && escape[1] == 'x' && escape[2] != '-' &&
                         std::from_chars(escape.data() + 2, end, value, 16).ptr == end;
      if (!valid) throw std::invalid_argument("\"" + std::string(escape) + R"(" is no \xNN and no \\)");
      c = character(value);
      used = hexEscape;
    }
    bytes += c;
    text.remove_prefix(used);
  }
  return bytes;
}

std::string utf8OfBytes(std::string_view bytes) {
  constexpr int oneByte = 0x80;
  std::string text;
  for (const char c : bytes) {
    const int value = byteValue(c);
    if (value >= oneByte) text += character(0xC0 | value >> 6);
    text += value < oneByte ? c : character(oneByte | (value & 0x3F));
  }
  return text;
}

}  // namespace velk::cli
