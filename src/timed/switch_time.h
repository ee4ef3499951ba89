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

/// Reads or writes one switch-time block. Ends normally for result 0, throws `Stop` for any other.
void SwitchTime(const link::Memory& memory, std::string_view readOrWrite, const SwitchTimeAccess& access);

}  // namespace velk::timed
