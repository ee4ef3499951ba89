#pragma once

#include <windows.h>

#include <string_view>

#include "component/identity.h"

namespace velk::com {

/// An identifier from its text, such as "DD354E3B-3B0A-4871-81E2-879F41FB2B63".
consteval GUID identifier(std::string_view text) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  constexpr std::size_t byteCount = 16;
  unsigned char bytes[byteCount] = {};
  std::size_t nibble = 0;
  for (const char c : text) {
    if (c == '-') continue;
    const auto value = digits.find(c);
    if (value == std::string_view::npos || nibble >= 2 * byteCount) throw "not an identifier";
    bytes[nibble / 2] = static_cast<unsigned char>(bytes[nibble / 2] << 4 | value);
    ++nibble;
  }
  if (nibble != 2 * byteCount) throw "not an identifier";
  GUID id{};
  id.Data1 = static_cast<unsigned long>(bytes[0]) << 24 | static_cast<unsigned long>(bytes[1]) << 16 |
             static_cast<unsigned long>(bytes[2]) << 8 | bytes[3];
  id.Data2 = static_cast<unsigned short>(bytes[4] << 8 | bytes[5]);
  id.Data3 = static_cast<unsigned short>(bytes[6] << 8 | bytes[7]);
  for (std::size_t i = 0; i < sizeof id.Data4; ++i) id.Data4[i] = bytes[i + 8];
  return id;
}

inline constexpr GUID libraryId = identifier(identity::libraryId);
inline constexpr GUID interfaceId = identifier(identity::interfaceId);
inline constexpr GUID classId = identifier(identity::classId);

}  // namespace velk::com
