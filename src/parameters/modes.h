#pragma once

#include <string>
#include <string_view>

#include "link/memory.h"
#include "values/bytes.h"

/// Output modes: two-letter codes for people and hosts, numbers 1 to 21 in the controller.
namespace velk::parameters {

/// Outputs count from 1.
constexpr Byte lastOutput = 99;

constexpr Byte lastMode = 21;

/// The number that two-way dimmers ("DI") and rollers ("RO") share in the controller.
constexpr Byte rollerMode = 4;

/// The number of a code, 0 when the text is not found.
Byte ModeToNr(std::string_view code);

/// The code of a number, empty outside 1 to 21; of 4 it is "RO" or "DI".
std::string_view codeOf(Byte mode, bool isRoller);

/// The code of a number, empty outside 1 to 21. For number 4 the controller is asked which of "RO" and "DI"
/// it is; a failed transaction gives "DI".
std::string ModeToStr(const link::Memory& memory, Byte mode, Byte output);

/// Where the controller marks an output of mode 4 as "RO", by holding the output's own number: a table of
/// one byte per output that grows downwards from 0x10FF.
constexpr link::Address rollerMarker(Byte output) {
  return {.page = 0x10, .offset = static_cast<Byte>(255 - output)};
}

}  // namespace velk::parameters
