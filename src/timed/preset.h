#pragma once

#include <string>
#include <string_view>

#include "link/memory.h"
#include "values/bytes.h"

namespace velk::timed {

constexpr Byte lastPreset = 92;

/// High address byte of a preset's data records. The presets 29 to 60 and 61 to 92 share pages.
Byte DPHPreset(Byte presetNr);

/// Low address byte of record `adres` of a preset; 0 for preset 0 and above 92. Run-time error 6 when it does
/// not fit a byte.
Byte DPLPreset(Byte presetNr, Byte adres);

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
