#pragma once

#include <string_view>

#include "link/memory.h"
#include "values/bytes.h"

namespace velk::timed {

/// One switch-time block, as `SwitchTime` hands it in and out.
struct SwitchTimeAccess {
  Byte block;
  Byte& days;
  Byte& hour;
  Byte& minute;
  Bytes& data;
};

constexpr Byte lastSwitchTime = 127;

/// Where a block begins; it takes the rest of its page, the last one up to the clock.
constexpr link::Address switchTimeBlock(Byte block) {
  return {.page = static_cast<Byte>(block + 128), .offset = 200};
}

/// Reads or writes one switch-time block. Ends normally for result 0, throws `Stop` for any other.
void SwitchTime(const link::Memory& memory, std::string_view readOrWrite, const SwitchTimeAccess& access);

}  // namespace velk::timed
