#pragma once

#include <string_view>

#include "link/memory.h"
#include "values/bytes.h"

namespace velk::controller {

/// Reads or writes positions `offset` + 1 to `offset` + `count` of the initialisation block. Ends with the
/// result byte or throws `Stop`.
Byte Ctl_Init(const link::Memory& memory, std::string_view readOrWrite, Bytes& parameters, Byte count,
              Byte offset);

}  // namespace velk::controller
