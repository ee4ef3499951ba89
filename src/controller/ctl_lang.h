#pragma once

#include <string_view>

#include "link/memory.h"

namespace velk::controller {

/// Where the display text of a slot (6 to 34) lies.
constexpr link::Address displayText(Byte slot) {
  return {.page = slot, .offset = 40};
}

/// Writes all display texts of a language, then reads every one back. Ends normally for result 0, throws
/// `Stop` for any other.
void Ctl_Lang(const link::Memory& memory, std::string_view language);

}  // namespace velk::controller
