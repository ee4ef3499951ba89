#include "simulator/house.h"

#include <array>
#include <initializer_list>

namespace velk::simulator {
namespace {

/// Bytes of a table row, as many as are given.
Bytes bytes(std::initializer_list<int> values) {
  Bytes text;
  for (const int value : values) text += character(value);
  return text;
}

Address at(int page, int offset, Area area = Area::external) {
  return {.area = area, .page = static_cast<Byte>(page), .offset = static_cast<Byte>(offset)};
}

constexpr std::size_t textLength = 16;

struct HouseOutput {
  Byte number;
  Byte mode;
  std::string_view name;
  std::array<Byte, 11> parameters;  ///< page offsets 16 to 26
  Byte further;                     ///< page offset 56
};

// The modes are the controller's numbers: 1 BI, 2 PB, 3 and 4 DI or RO, 5 T1 and so on.
constexpr std::array outputs{
    HouseOutput{1, 11, "Remote control", {}, 0},
    HouseOutput{2, 12, "Serial interface", {}, 0},
    HouseOutput{3, 1, "Kitchen ceiling", {0x05, 3, 0x21, 10, 1, 10, 2, 11, 3, 0, 0}, 0x10},
    HouseOutput{4, 2, "Door bell", {0x00, 4, 0x12}, 0x20},
    HouseOutput{5, 5, "Hall ceiling", {0x03, 5, 0x31, 30, 2, 60, 4}, 0x30},
    HouseOutput{6, 3, "Living room spots", {0x01, 6, 0x42, 8, 12, 20, 30}, 0x10},
    HouseOutput{7, 4, "Bedroom shutter", {0x02, 7, 0x53, 25, 25, 5, 6, 1, 2, 3, 4}, 0x40},
    HouseOutput{8, 6, "Stairs", {0x0F, 8, 0x11, 90, 1, 120, 2}, 0x10},
    HouseOutput{9, 7, "Bathroom fan", {0x00, 9, 0x22, 5, 10, 15, 20}, 0x10},
    HouseOutput{10, 8, "Garden pump", {0x04, 10, 0x33, 45, 0, 45, 0}, 0x10},
    HouseOutput{11, 9, "Awning", {0x85, 11, 0x44, 40, 41, 42, 43, 44, 45, 46, 47}, 0x50},
    HouseOutput{12, 10, "Porch sensor", {0x00, 1}, 0x00},
    HouseOutput{13, 13, "Alarm siren", {0x00, 13, 0x12}, 0x60},
    HouseOutput{14, 14, "Study lamp", {0x0A, 14, 0x24, 1, 2, 3, 4, 5, 6, 7, 8}, 0x70},
    HouseOutput{15, 15, "Heating", {0x00, 0, 0x35, 19, 21, 17, 5, 30, 22, 18, 16}, 0x10},
    HouseOutput{17, 17, "Away logic", {}, 0x10},
    HouseOutput{18, 18, "Program switch", {0x00, 18}, 0x10},
    HouseOutput{19, 19, "Burglar alarm", {}, 0x00},
    HouseOutput{20, 20, "Audio", {0, 0, 0, 0, 3, 7, 40, 1}, 0x10},
    HouseOutput{21, 21, "Attic", {0x01, 21, 0x15, 10, 11, 12, 13}, 0x80},
};

/// What marks an output of mode 4 as a roller: its own number in a table that grows downwards.
constexpr std::array<Byte, 1> rollers{7};

struct HouseLink {
  Byte source;
  Byte subAddress;  ///< 0 to 3
  Byte destination;
  Byte parameters;  ///< two nibbles
  bool rising;
  bool falling;
};

constexpr std::array links{
    HouseLink{30, 0, 5, 0x3A, true, true},
    HouseLink{30, 1, 3, 0x10, true, false},
    HouseLink{31, 0, 7, 0x12, true, true},
    HouseLink{31, 3, 11, 0x01, false, true},
};

struct PresetRecord {
  Byte address;  ///< none: 0
  std::array<Byte, 4> bytes;
};

struct HousePreset {
  Byte number;
  std::string_view text;
  Byte delay1;
  Byte delay2;  ///< 255: none
  bool simulated;
  std::array<PresetRecord, 3> records;
};

constexpr std::array presets{
    HousePreset{1, "All lights off", 20, 255, false, {{{3, {0, 2}}, {5, {0, 2}}, {6, {0, 2}}}}},
    HousePreset{2, "Evening", 10, 40, true, {{{3, {255, 2}}, {5, {30, 2}}, {7, {0, 4, 2}}}}},
    HousePreset{30, "Film", 5, 255, false, {{{6, {80, 3}}, {7, {100, 4, 2}}}}},
    HousePreset{61, "Holiday", 60, 120, true, {{{11, {9, 9, 9, 9}}, {13, {8, 8, 8, 8}}}}},
};

Address presetRecord(int number, int record) {
  const int offset = number <= 28 ? number * 4 + 12 : (number - 29) % 32 * 4 + 128;
  const int page = record + (number <= 28 ? 55 : number <= 60 ? 0 : 99);
  return at(page, offset, Area::block);
}

void putOutputs(Store& store) {
  for (const HouseOutput& output : outputs) {
    store[at(output.number, 1)] = output.mode;
    for (std::size_t i = 0; i < output.parameters.size(); ++i) {
      store[at(output.number, 16).next(i)] = output.parameters.at(i);
    }
    store[at(output.number, 56)] = output.further;
    store.write(at(output.number, 64), padded(output.name, textLength));
  }
  for (const Byte roller : rollers) store[at(0x10, 255 - roller)] = roller;
}

void putLinks(Store& store) {
  for (const HouseLink& link : links) {
    store.write(at(link.source, 31 + 2 * link.subAddress), bytes({link.destination + 128, link.parameters}));
    const int flanks = (link.rising ? 16 : 0) | (link.falling ? 1 : 0);
    Byte& flankByte = store[at(link.source, 254)];
    flankByte = static_cast<Byte>(flankByte | flanks << link.subAddress);
  }
}

void putPresets(Store& store) {
  for (const HousePreset& preset : presets) {
    const int group = (preset.number - 1) / 4 + 102;
    const int member = (preset.number - 1) % 4;
    store.write(at(preset.number + 34, 40), padded(preset.text, textLength));
    store.write(at(group, member * 2 + 8), bytes({preset.delay1, preset.delay2}));
    Byte& flags = store[at(group, 18)];
    if (preset.simulated) flags = static_cast<Byte>(flags | 1 << member);
    for (const PresetRecord& record : preset.records) {
      const auto& [b0, b1, b2, b3] = record.bytes;
      if (record.address != 0)
        store.write(presetRecord(preset.number, record.address), bytes({b0, b1, b2, b3}));
    }
  }
}

void putDisplayTexts(Store& store) {
  constexpr int firstSlot = 8;
  int slot = firstSlot;
  for (const std::string_view text : {"CONTROLLER V8.01", "   VELK READY", "SELECT CHANNEL__"}) {
    store.write(at(slot++, 40), padded(text, textLength));
  }
}

/// Day byte, minute and hour in packed BCD, then a two-byte action or a list closed by 0.
void putSwitchTimes(Store& store) {
  store.write(at(128, 200), bytes({0x1F, 0x30, 0x07, 3, 255, 2, 7, 0, 4, 0}));
  store.write(at(129, 200), bytes({0xE0, 0x45, 0x22, 101, 2, 0, 0}));
}

/// Five-byte records of one weekday and hour, closed by 255; every other hour is an empty list.
void putSimulation(Store& store) {
  constexpr int bcdOfEighteen = 24;
  constexpr Byte endMark = 255;
  for (int weekday = 0; weekday < 7; ++weekday) {
    for (int hour = 0; hour < 24; ++hour) {
      store[at(weekday * 36 + hour / 10 * 16 + hour % 10, 0, Area::highBlock)] = endMark;
    }
  }
  store.write(at(bcdOfEighteen, 0, Area::highBlock),
              bytes({0x15, 0x30, 3, 255, 2, 0x42, 0x05, 5, 0, 2, endMark}));
}

void putInfraredTexts(Store& store) {
  int entry = 0;
  for (const std::string_view text : {"Television", "Radio", "Projector"}) {
    store.write(at(entry / 16 + 10, entry % 16 * 16, Area::highBlock), padded(text, textLength));
    ++entry;
  }
}

/// The settings, and Monday the 4th of March 2024, 10:20:30, from the seconds upwards in packed BCD.
void putController(Store& store) {
  store.write(at(0, 2), bytes({3, 0, 50, 110, 7, 9, 20}));
  store.write(at(2, 8), bytes({1, 2, 3}));
  store.write(at(255, 249), bytes({0x30, 0x20, 0x10, 0x01, 0x04, 0x03, 0x24}));
}

}  // namespace

Store house() {
  Store store;
  putOutputs(store);
  putLinks(store);
  putPresets(store);
  putDisplayTexts(store);
  putSwitchTimes(store);
  putSimulation(store);
  putInfraredTexts(store);
  putController(store);
  return store;
}

}  // namespace velk::simulator
