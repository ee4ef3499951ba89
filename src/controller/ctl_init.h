#pragma once

#include <string_view>

#include "link/memory.h"
#include "values/bytes.h"

namespace velk::controller {

/// The first of the three settings that can be written.
constexpr link::Address firstSetting{.page = 0x00, .offset = 0x04};

/// Two bytes; while one of them is not 0, the clock stands still. The clock follows, from seconds to year.
constexpr link::Address clockHold{.page = 0xFF, .offset = 0xF7};
constexpr link::Address clockSeconds = clockHold.next(2);

/// Reads or writes positions `offset` + 1 to `offset` + `count` of the initialisation block. Ends with the
/// result byte or throws `Stop`.
Byte Ctl_Init(const link::Memory& memory, std::string_view readOrWrite, Bytes& parameters, Byte count,
              Byte offset);

}  // namespace velk::controller
