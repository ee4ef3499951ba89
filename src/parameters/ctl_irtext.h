#pragma once

#include <string_view>

#include "link/memory.h"
#include "values/bytes.h"

namespace velk::parameters {

/// Stores infrared text `number` (0 to 63). Ends with the result byte or throws `Stop`.
Byte Ctl_IRText(const link::Memory& memory, std::string_view readOrWrite, Byte number, std::string_view text);

/// Where an infrared text lies, in the block area's high bank: sixteen texts to a page from page 10 on.
constexpr link::Address infraredText(Byte number) {
  return {.area = link::Area::highBlock,
          .page = static_cast<Byte>(number / 16 + 10),
          .offset = static_cast<Byte>(number % 16 * 16)};
}

}  // namespace velk::parameters
