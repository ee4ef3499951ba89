#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "link/memory.h"

namespace velk::parameters {

/// What a caller of `Ctl_Param` hands in and gets back.
struct OutputAccess {
  Byte output;  ///< its number, 1 to 99
  std::string& mode;
  std::string& parameters;
  std::int16_t& count;
  Byte offset;
};

/// Reads or writes one output: its mode and the parameter items of that mode. Ends with 0 or throws `Stop`.
void Ctl_Param(const link::Memory& memory, std::string_view readOrWrite, const OutputAccess& access);

}  // namespace velk::parameters
