#pragma once

#include <string>
#include <string_view>

#include "link/memory.h"
#include "values/bytes.h"

namespace velk::timed {

constexpr Byte lastPreset = 92;

/// Records are numbered by address, as outputs are.
constexpr Byte firstPresetRecord = 3;
constexpr Byte lastPresetRecord = 99;

constexpr Byte presetRecordSize = 4;
constexpr Byte presetTextSize = 16;

/// Delays that can be stored, each alone.
constexpr int shortestDelay = 5;
constexpr int longestDelay = 200;
constexpr int noDelay = 255;  ///< stored for a missing second delay

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

/// The second delay, 0 for none, from the two bytes that are stored: two that come to 255 read back as one.
constexpr Byte secondDelay(Byte first, Byte second) {
  return first + second >= noDelay ? Byte{0} : second;
}

/// Where its simulation flag lies, in a byte of the four.
constexpr link::Address presetFlags(Byte preset) {
  return {.page = presetDelays(preset).page, .offset = 18};
}

/// The flag in that byte.
constexpr int presetFlag(Byte preset) {
  return 1 << ((preset - 1) % 4);
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
