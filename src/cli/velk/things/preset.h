#pragma once

#include <map>
#include <string>

#include "cli/shared/json.h"
#include "cli/velk/things/details.h"
#include "cli/velk/things/output_names.h"
#include "component/serial.h"
#include "timed/preset.h"

namespace velk::cli {

using timed::firstPresetRecord;
using timed::lastPreset;
using timed::lastPresetRecord;
using timed::presetRecordSize;
using timed::presetTextSize;

/// A preset: text, delays and the records that are not all zero.
struct Preset {
  Byte number = 0;
  Bytes stored = Bytes(presetTextSize, ' ');  ///< the text as it lies there
  Byte delay1 = 0;
  Byte delay2 = 0;  ///< 0 for none
  bool simulated = false;
  std::map<Byte, Bytes> records;  ///< by their numbers, four bytes each
};

enum class Records : bool { withoutMost, all };

/// Reads a preset; without most records that is much faster, and `records` stays empty.
Preset readPreset(Serial& serial, Byte number, Records records = Records::all);

/// Writes what differs from `before`, which stands there. Throws `Failure`.
void writePreset(Serial& serial, const Preset& before, const Preset& after);

/// Whether anything is stored.
bool isUsed(const Preset& preset);

/// The text as people read it.
std::string textOf(const Preset& preset);

/// "preset 3".
std::string titleOf(const Preset& preset);

Json jsonOf(const Preset& preset, OutputNames& names);

/// The same without records.
Json jsonOfHead(const Preset& preset);

/// The details without records, which need no names.
Details detailsOfHead(const Preset& preset);

Details detailsOf(const Preset& preset, OutputNames& names);

}  // namespace velk::cli
