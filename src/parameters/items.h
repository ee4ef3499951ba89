#pragma once

#include <optional>

#include "link/memory.h"
#include "values/bytes.h"

/// Parameter items: how one character of a parameter text lies in one byte of the controller.
namespace velk::parameters {

using link::Area;

/// How an item's character is made of its byte.
enum class Form : Byte {
  whole,   ///< the byte itself
  low,     ///< the low four bits
  high,    ///< the high four bits
  flag,    ///< one bit, as one of two letters
  zero,    ///< one letter for 0, another for anything else
  stored,  ///< the stored mode number: one letter for 3, another for 4
};

struct Item {
  Form form = Form::whole;
  Byte at{};                   ///< page offset, or position in the output's block
  Byte mask = 255;             ///< the bits of the byte that belong to the item
  char set{};                  ///< the letter for a bit that is set, for not 0, for 4
  char clear{};                ///< the letter for a bit that is clear, for 0, for 3
  Area area = Area::external;  ///< where `at` counts: the output's page, or its block in the block area
};

/// The character that the item's byte stands for.
constexpr char decoded(const Item& item, Byte byte) {
  switch (item.form) {
    case Form::low:
      return character(byte & 15);
    case Form::high:
      return character(byte >> 4);
    case Form::flag:
      return (byte & item.mask) != 0 ? item.set : item.clear;
    case Form::zero:
      return byte != 0 ? item.set : item.clear;
    case Form::stored:
      return byte != 3 ? item.set : item.clear;
    case Form::whole:
      break;
  }
  return character(byte);
}

/// The item's byte with the character put in and all other bits as in `before`; nothing when the item cannot
/// hold the character.
constexpr std::optional<Byte> encoded(const Item& item, char c, Byte before) {
  const bool isLetter = c == item.set || c == item.clear;
  const auto merged = [&](int bits) { return static_cast<Byte>((before & ~item.mask) | bits); };
  switch (item.form) {
    case Form::low:
      return byteValue(c) > 15 ? std::nullopt : std::optional(merged(byteValue(c)));
    case Form::high:
      return byteValue(c) > 15 ? std::nullopt : std::optional(merged(byteValue(c) << 4));
    case Form::flag:
      return isLetter ? std::optional(merged(c == item.set ? item.mask : 0)) : std::nullopt;
    case Form::zero:
      // Any byte but 0 reads as the same letter, so one that is there already stays.
      if (!isLetter) return std::nullopt;
      return c == item.clear ? Byte{0} : before != 0 ? before : Byte{1};
    case Form::stored:
      return isLetter ? std::optional(c == item.set ? Byte{4} : Byte{3}) : std::nullopt;
    case Form::whole:
      break;
  }
  return byteValue(c);
}

/// Whether writing the item needs the byte that is there.
constexpr bool sharesItsByte(const Item& item) {
  return item.mask != 255 || item.form == Form::zero;
}

}  // namespace velk::parameters
