#include "cli/shared/escapes.h"

#include <stdexcept>

#include "values/hex.h"

namespace velk::cli {
namespace {

constexpr Byte oneByte = 0x80;     ///< the first character that takes more than one byte in UTF-8
constexpr Byte firstLatin = 0xA0;  ///< the characters in front of it, from 0x80 on, are controls
constexpr Byte continuation = 0x80;
constexpr Byte continued = 0x3F;  ///< the bits of a character in such a byte

bool isPrintable(char c) {
  return c >= ' ' && c <= '~';
}

bool isContinuation(char c) {
  return (byteValue(c) & ~continued) == continuation;
}

std::string utf8OfByte(char c) {
  const int value = byteValue(c);
  if (value < oneByte) return {c};
  return {character(0xC0 | value >> 6), character(continuation | (value & continued))};
}

std::string escapedByte(Byte value) {
  return "\\x" + hex(Bytes(1, character(value)));
}

std::string escapedBy(std::string_view bytes, int firstShown) {
  std::string text;
  for (const char c : bytes) {
    if (c == '\\') {
      text += "\\\\";
    } else if (isPrintable(c) || byteValue(c) >= firstShown) {
      text += utf8OfByte(c);
    } else {
      text += escapedByte(byteValue(c));
    }
  }
  return text;
}

/// `text` starts with a byte above 127 that starts none of U+0080 to U+00FF.
[[noreturn]] void refuse(std::string_view text) {
  std::size_t length = 1;
  while (length < text.size() && isContinuation(text[length])) ++length;
  if (isContinuation(text.front()) || length == 1) {
    throw std::invalid_argument("a text is no UTF-8: the byte " + escapedByte(byteValue(text.front())) +
                                " stands in it");
  }
  throw std::invalid_argument("\"" + std::string(text.substr(0, length)) +
                              "\" is no character of the controller, which has those of Latin-1 only");
}

}  // namespace

std::string escaped(std::string_view bytes) {
  constexpr int none = 256;
  return escapedBy(bytes, none);
}

std::string shown(std::string_view bytes) {
  return escapedBy(bytes, firstLatin);
}

Bytes bytesOfUtf8(std::string_view text) {
  Bytes bytes;
  while (!text.empty()) {
    const Byte first = byteValue(text.front());
    const bool two = first == 0xC2 || first == 0xC3;
    if (first >= oneByte && !(two && text.size() > 1 && isContinuation(text[1]))) refuse(text);
    bytes += two ? character((first & 3) << 6 | (byteValue(text[1]) & continued)) : text.front();
    text.remove_prefix(two ? 2 : 1);
  }
  return bytes;
}

Bytes unescaped(std::string_view typed) {
  constexpr std::size_t hexEscape = 4;
  const Bytes latin = bytesOfUtf8(typed);
  std::string_view text = latin;
  Bytes bytes;
  while (!text.empty()) {
    std::size_t used = 1;
    char c = text.front();
    if (text.substr(0, 2) == "\\\\") {
      used = 2;
    } else if (c == '\\') {
      const std::string_view escape = text.substr(0, hexEscape);
      const auto value = byteOfHex(slice(escape, 2));
      if (!value || escape[1] != 'x')
        throw std::invalid_argument("\"" + utf8OfBytes(escape) + R"(" is no \xNN and no \\)");
      c = character(*value);
      used = hexEscape;
    }
    bytes += c;
    text.remove_prefix(used);
  }
  return bytes;
}

std::string utf8OfBytes(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) text += utf8OfByte(c);
  return text;
}

}  // namespace velk::cli
