#include "timed/preset.h"

#include "values/result.h"

namespace velk::timed {
namespace {

using link::Memory;
using link::Stop;

bool isDelay(int delay) {
  return delay >= shortestDelay && delay <= longestDelay;
}

void checkWrite(const PresetAccess& p) {
  const std::size_t records = p.lastRecord - firstPresetRecord + std::size_t{1};
  if (p.data.size() != records * presetRecordSize || p.text.size() != presetTextSize) throw Stop{wrongLength};
  if (!isDelay(p.delay1) || (p.delay2 != 0 && !isDelay(p.delay2)) || p.delay1 + p.delay2 > 255)
    throw Stop{badValue};
}

void write(const Memory& memory, const PresetAccess& p) {
  checkWrite(p);
  memory.write(presetText(p.number), p.text);
  for (Byte i = firstPresetRecord; i <= p.lastRecord; ++i) {
    const std::string_view record =
        slice(p.data, std::size_t{presetRecordSize} * (i - firstPresetRecord), presetRecordSize);
    // A byte of value 1 marks a record that is to stay as it is in the controller.
    if (record.find('\x01') != std::string_view::npos) continue;
    memory.write(presetRecord(p.number, i), record);
  }
  memory.write(presetDelays(p.number),
               Bytes{character(p.delay1), character(p.delay2 == 0 ? noDelay : p.delay2)});
  const int others = byteAt(memory.read(1, presetFlags(p.number)), 0) & ~presetFlag(p.number);
  memory.write(presetFlags(p.number),
               Bytes(1, character(p.simulation != 0 ? others | presetFlag(p.number) : others)));
}

void read(const Memory& memory, const PresetAccess& p) {
  p.data.clear();
  p.text = memory.read(presetTextSize, presetText(p.number));
  for (Byte i = firstPresetRecord; i <= p.lastRecord; ++i)
    p.data += memory.read(presetRecordSize, presetRecord(p.number, i));
  const Bytes delays = memory.read(2, presetDelays(p.number));
  p.delay1 = byteAt(delays, 0);
  p.delay2 = secondDelay(p.delay1, byteAt(delays, 1));
  const int flags = byteAt(memory.read(1, presetFlags(p.number)), 0);
  p.simulation = (flags & presetFlag(p.number)) != 0 ? 255 : 0;
}

}  // namespace

Byte DPHPreset(Byte preset) {
  constexpr Byte lastOfFirstGroup = 28;
  if (preset <= lastOfFirstGroup) return static_cast<Byte>(preset * 4 + 12);
  return static_cast<Byte>((preset - 29) % 32 * 4 + 128);
}

Byte DPLPreset(Byte preset, Byte record) {
  if (preset == 0 || preset > lastPreset) return 0;
  const int base = preset <= 28 ? 55 : preset <= 60 ? 0 : 99;
  return checkedByte(record + base);
}

link::Address presetRecord(Byte preset, Byte record) {
  return {.area = link::Area::block, .page = DPLPreset(preset, record), .offset = DPHPreset(preset)};
}

void Preset(const Memory& memory, std::string_view readOrWrite, const PresetAccess& preset) {
  if (preset.number == 0 || preset.number > lastPreset) throw Stop{badPreset};
  if (preset.lastRecord < firstPresetRecord || preset.lastRecord > lastPresetRecord) throw Stop{badAddress};
  if (readOrWrite == "R") {
    read(memory, preset);
  } else {
    write(memory, preset);
  }
}

}  // namespace velk::timed
