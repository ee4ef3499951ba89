#pragma once

#include <array>
#include <compare>
#include <string_view>

#include "values/bytes.h"

/// Where bytes lie in the controller.
namespace velk::link {

/// The four memories of 64 KiB, which the command byte of a request selects: by its direction, the external
/// or the block area, and by its bank.
enum class Area : Byte { external, block, highBlock, highExternal };

/// What people call them: the direction letter of `ReadCom`, "+" for the high bank.
constexpr auto areaNames = std::to_array<std::string_view>({"V", "H", "H+", "V+"});

constexpr std::string_view nameOf(Area area) {
  return areaNames.at(static_cast<std::size_t>(area));
}

constexpr bool isExternal(Area area) {
  return area == Area::external || area == Area::highExternal;
}

constexpr bool isHighBank(Area area) {
  return area == Area::highBlock || area == Area::highExternal;
}

/// One byte. The bytes of a transfer lie at successive offsets of its page, whichever of the two address
/// bytes of a request the page is: the high one in the external areas, the low one in the block areas.
struct Address {
  Area area = Area::external;
  Byte page = 0;
  Byte offset = 0;

  /// The high address byte of a request.
  [[nodiscard]] constexpr Byte high() const { return isExternal(area) ? page : offset; }

  /// The low one.
  [[nodiscard]] constexpr Byte low() const { return isExternal(area) ? offset : page; }

  /// The byte so many steps further in the order of a transfer. The external areas go on in the next page and
  /// begin anew behind 0xFFFF, a page of the block areas begins anew behind its last byte.
  [[nodiscard]] constexpr Address next(std::size_t steps = 1) const {
    constexpr std::size_t pageSize = 256;
    const std::size_t carry = isExternal(area) ? (offset + steps) / pageSize : 0;
    return {
        .area = area, .page = static_cast<Byte>(page + carry), .offset = static_cast<Byte>(offset + steps)};
  }

  auto operator<=>(const Address&) const = default;
};

/// The byte that the two address bytes of a request name.
constexpr Address addressAt(Area area, Byte high, Byte low) {
  return {.area = area, .page = isExternal(area) ? high : low, .offset = isExternal(area) ? low : high};
}

}  // namespace velk::link
