#include "cli/velk/things/preset.h"

#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/transfer.h"
#include "cli/velk/things/words.h"

namespace velk::cli {
namespace {

Bytes recordOf(const Preset& preset, Byte number) {
  const auto found = preset.records.find(number);
  return found == preset.records.end() ? Bytes(presetRecordSize, '\0') : found->second;
}

Bytes storedDelays(const Preset& preset) {
  // A preset that was never set has none.
  if (preset.delay1 == 0) return Bytes(2, '\0');
  return {character(preset.delay1), character(preset.delay2 == 0 ? timed::noDelay : preset.delay2)};
}

/// Four presets share the byte.
void writeFlag(Serial& serial, const Preset& preset) {
  const link::Address at = timed::presetFlags(preset.number);
  const int flag = timed::presetFlag(preset.number);
  const int others = byteAt(readTransfer(serial, at, 1, titleOf(preset)), 0) & ~flag;
  writeTransfer(serial, at, Bytes(1, character(preset.simulated ? others | flag : others)), titleOf(preset));
}

}  // namespace

Preset readPreset(Serial& serial, Byte number, Records records) {
  Preset preset{.number = number};
  Bytes data;
  Byte simulation = 0;
  const bool all = records == Records::all;
  const auto read = [&] {
    return serial.Preset("R", number, preset.stored, all ? lastPresetRecord : firstPresetRecord, data,
                         preset.delay1, preset.delay2, simulation);
  };
  expectRead(read, "reading preset " + std::to_string(number));
  preset.simulated = simulation != 0;
  for (std::size_t i = 0; all && i < data.size(); i += presetRecordSize) {
    Bytes record = data.substr(i, presetRecordSize);
    if (record == Bytes(presetRecordSize, '\0')) continue;
    preset.records.emplace(static_cast<Byte>(firstPresetRecord + i / presetRecordSize), std::move(record));
  }
  return preset;
}

void writePreset(Serial& serial, const Preset& before, const Preset& after) {
  const std::string what = titleOf(after);
  if (after.stored != before.stored) {
    writeTransfer(serial, timed::presetText(after.number), after.stored, what);
  }
  for (Byte record = firstPresetRecord; record <= lastPresetRecord; ++record) {
    const Bytes bytes = recordOf(after, record);
    if (bytes == recordOf(before, record)) continue;
    writeTransfer(serial, timed::presetRecord(after.number, record), bytes, what);
  }
  if (storedDelays(after) != storedDelays(before)) {
    writeTransfer(serial, timed::presetDelays(after.number), storedDelays(after), what);
  }
  if (after.simulated != before.simulated) writeFlag(serial, after);
}

bool isUsed(const Preset& preset) {
  return !textOf(preset).empty() || preset.delay1 != 0 || preset.simulated || !preset.records.empty();
}

std::string textOf(const Preset& preset) {
  return label(preset.stored);
}

std::string titleOf(const Preset& preset) {
  return "preset " + std::to_string(preset.number);
}

Json jsonOfHead(const Preset& preset) {
  return {{"preset", preset.number},
          {"text", textOf(preset)},
          {"delay1", preset.delay1},
          {"delay2", preset.delay2},
          {"simulation", preset.simulated}};
}

Json jsonOf(const Preset& preset, OutputNames& names) {
  Json json = jsonOfHead(preset);
  json["records"] = Json::array();
  for (const auto& [number, bytes] : preset.records) {
    json["records"].push_back(
        {{"record", number}, {"name", names.of(number)}, {"bytes", jsonOfBytes(bytes)}});
  }
  return json;
}

Details detailsOfHead(const Preset& preset) {
  return {{"text", textOf(preset)},
          {"delay 1", std::to_string(preset.delay1)},
          {"delay 2", preset.delay2 == 0 ? "none" : std::to_string(preset.delay2)},
          {"simulation", preset.simulated ? "yes" : "no"}};
}

Details detailsOf(const Preset& preset, OutputNames& names) {
  Details details = detailsOfHead(preset);
  for (const auto& [number, bytes] : preset.records) {
    const std::string& name = names.of(number);
    details.push_back(
        {"record " + std::to_string(number), (name.empty() ? "" : name + ": ") + numbers(bytes)});
  }
  return details;
}

}  // namespace velk::cli
