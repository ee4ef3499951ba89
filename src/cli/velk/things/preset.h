#pragma once

#include <string>
#include <vector>

#include "cli/shared/json.h"
#include "cli/velk/things/details.h"
#include "component/serial.h"

namespace velk::cli {

constexpr Byte lastPresetNumber = 92;

/// A preset: text, delays and the records that are not all zero.
struct Preset {
  struct Record {
    Byte number;  ///< 3 to 99
    Bytes bytes;  ///< four
  };

  Byte number = 0;
  std::string text;
  Byte delay1 = 0;
  Byte delay2 = 0;  ///< 0 for none
  bool simulated = false;
  std::vector<Record> records;
};

enum class Records : bool { withoutMost, all };

/// Reads a preset; without most records that is much faster, and `records` stays empty.
Preset readPreset(Serial& serial, Byte number, Records records = Records::all);

/// Whether anything is stored.
bool isUsed(const Preset& preset);

Json jsonOf(const Preset& preset);

/// The same without records.
Json jsonOfHead(const Preset& preset);

Details detailsOf(const Preset& preset);

}  // namespace velk::cli
