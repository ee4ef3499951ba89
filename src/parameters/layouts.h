#pragma once

#include <array>
#include <span>
#include <string_view>

#include "parameters/items.h"
#include "values/bytes.h"

/// Where the parameter items of each output mode lie in the controller: tables that reading and writing
/// share.
namespace velk::parameters {

/// A run of bytes that is read at once.
struct ByteRun {
  Byte at{};
  Byte size = 0;
  Area area = Area::external;

  [[nodiscard]] constexpr bool holds(Area where, Byte offset) const {
    return where == area && offset >= at && offset < at + size;
  }
};

/// What `Offset` may be.
enum class OffsetRule : Byte {
  upToBound,
  even,  ///< and at most 293, which a byte cannot exceed: only evenness decides
  any,
};

/// How `Aantal` is checked.
enum class CountRule : Byte {
  rest,  ///< 255 means all items from `Offset` on; `Offset` + `Aantal` may not pass the last item
  all,   ///< 255 means all items whatever `Offset` is; only `Aantal` itself is checked
  none,  ///< not looked at
};

/// One output mode.
struct Layout {
  std::string_view code;
  ByteRun block;                ///< read before the arguments are checked
  ByteRun own;                  ///< read after they are checked
  std::span<const Item> items;  ///< by item number
  Byte bound = 0;               ///< the largest `Offset`
  OffsetRule offsets = OffsetRule::upToBound;
  CountRule counts = CountRule::rest;
  bool itemsWithoutCount = false;  ///< an `Aantal` of 0 does not stop at the mode
  Byte alsoStoredAs = 0;           ///< a second number that the code may be stored as
  bool marked = false;             ///< stored with the output's marker byte set
};

/// Page offset of the mode number.
constexpr Byte modeOffset = 1;

/// Page offset of the byte that is read for every mode after its block.
constexpr ByteRun furtherByte{.at = 56, .size = 1};

/// The 16 bytes that an output owns in the block area. All outputs together fill the pages 247 to 253.
constexpr link::Address blockOf(Byte output) {
  return {.area = link::Area::block,
          .page = static_cast<Byte>(247 + output / 16),
          .offset = static_cast<Byte>(output % 16 * 16)};
}

/// The layout of a mode code; none for an unknown code.
const Layout* layoutOf(std::string_view code);

/// All layouts, in the order of their mode numbers.
std::span<const Layout> layouts();

/// The address of an item or run of an output.
link::Address addressOf(Byte output, Area area, Byte at);

/// The items that a call names, from the first up to `end`.
struct Range {
  std::size_t first;
  std::size_t end;
};

/// Checks `offset` (103) and `count` (102) against the layout; a count of 255 is replaced by what it
/// stands for.
Range resolveRange(const Layout& layout, Byte offset, std::int16_t& count);

}  // namespace velk::parameters
