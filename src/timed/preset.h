#pragma once

#include <string>
#include <string_view>

#include "link/memory.h"
#include "values/bytes.h"

namespace velk::timed {

constexpr Byte lastPreset = 92;

/// High address byte of a preset's data records. The presets 29 to 60 and 61 to 92 share pages.
Byte DPHPreset(Byte preset);

/// Low address byte of a record of a preset; 0 for preset 0 and above 92. Run-time error 6 when it does not
/// fit a byte.
Byte DPLPreset(Byte preset, Byte record);

/// Where a record of a preset lies, 3 to 99. Run-time error 6 as above.
link::Address presetRecord(Byte preset, Byte record);

/// Where the text of a preset lies.
constexpr link::Address presetText(Byte preset) {
  return {.page = static_cast<Byte>(preset + 34), .offset = 40};
}

/// Where its two delays lie. Four presets share a page.
constexpr link::Address presetDelays(Byte preset) {
  return {.page = static_cast<Byte>((preset - 1) / 4 + 102),
          .offset = static_cast<Byte>((preset - 1) % 4 * 2 + 8)};
}

/// Where its simulation flag lies, in a byte of the four.
constexpr link::Address presetFlags(Byte preset) {
  return {.page = presetDelays(preset).page, .offset = 18};
}

/// One preset, as `Preset` hands it in and out.
struct PresetAccess {
  Byte number;
  std::string& text;
  Byte lastRecord;
  Bytes& data;
  Byte& delay1;
  Byte& delay2;
  Byte& simulation;
};

/// Reads or writes one preset. Ends normally for result 0, throws `Stop` for any other.
void Preset(const link::Memory& memory, std::string_view readOrWrite, const PresetAccess& preset);

}  // namespace velk::timed
