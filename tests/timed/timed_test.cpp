#include "support/watched_house.h"

namespace velk::test {
namespace {

class Presets : public WatchedHouse {
 protected:
  Byte write(Byte number, Byte delay1 = 5, Byte delay2 = 0, Byte simulation = 0) {
    return serial.Preset("W", number, text, 3, record, delay1, delay2, simulation);
  }

  /// The result, then the preset as it comes back: "0: sixteen letters. [0A 0B 0C 0D] 5 0 255".
  std::string read(Byte number, Byte last) {
    std::string name = "old", data = "old";
    Byte delay1 = 1, delay2 = 1, simulation = 1;
    result = serial.Preset("R", number, name, last, data, delay1, delay2, simulation);
    return std::to_string(result) + ": " + name + " [" + hex(data) + "] " + std::to_string(delay1) + " " +
           std::to_string(delay2) + " " + std::to_string(simulation);
  }

  Byte result = 0;
  const std::string text = "sixteen letters.";
  const Bytes record = bytes({10, 11, 12, 13});
};

TEST_F(Presets, Addresses) {
  // A preset and a record, then its page and its offset there.
  const Byte table[][4] = {{0, 9, 12, 0},       {1, 3, 16, 58},      {28, 200, 124, 255}, {29, 3, 128, 3},
                           {60, 255, 252, 255}, {92, 156, 252, 255}, {93, 255, 128, 0}};
  for (const auto& [number, place, page, offset] : table) {
    EXPECT_EQ(serial.DPHPreset(number), page) << int{number};
    EXPECT_EQ(serial.DPLPreset(number, place), offset) << int{number};
  }
  EXPECT_EQ(errorOf([&] { serial.DPLPreset(28, 201); }), 6);
  EXPECT_EQ(errorOf([&] { serial.DPLPreset(61, 157); }), 6);
}

TEST_F(Presets, EveryPresetHasItsPlaces) {
  // Where text, record 3, delays and flags lie; then the flag byte without the preset, and with it.
  const std::tuple<Byte, std::string, std::string, std::string, std::string, const char*, const char*>
      rows[] = {
          {1, "2328", "103A", "6608", "6612", "0E", "0F"},  {4, "2628", "1C3A", "660E", "6612", "07", "0F"},
          {5, "2728", "203A", "6708", "6712", "00", "01"},  {28, "3E28", "7C3A", "6C0E", "6C12", "00", "08"},
          {29, "3F28", "8003", "6D08", "6D12", "00", "01"}, {60, "5E28", "FC03", "740E", "7412", "00", "08"},
          {61, "5F28", "8066", "7508", "7512", "00", "01"}, {92, "7E28", "FC66", "7C0E", "7C12", "00", "08"}};
  setMemory(102, 18, "\x0F");
  for (const auto& [number, textAt, recordAt, delaysAt, flagsAt, clear, set] : rows) {
    SCOPED_TRACE("preset " + std::to_string(number));
    const std::string head = "0: write 16 V " + textAt +
                             " 73 69 78 74 65 65 6E 20 6C 65 74 74 65 72 73 2E; " + "write 4 H " + recordAt +
                             " 0A 0B 0C 0D; write 2 V " + delaysAt;
    const std::string tail = "; read  1 V " + flagsAt + "; write 1 V " + flagsAt + " ";
    EXPECT_EQ(outcome(write(number, 100, 155)), head + " 64 9B" + tail + clear);
    EXPECT_EQ(read(number, 3), "0: sixteen letters. [0A 0B 0C 0D] 100 0 0") << "delays of 255 are one delay";
    EXPECT_EQ(sent(), "read  16 V " + textAt + "; read  4 H " + recordAt + "; read  2 V " + delaysAt +
                          "; read  1 V " + flagsAt);
    EXPECT_EQ(outcome(write(number, 100, 154, 1)), head + " 64 9A" + tail + set);
    EXPECT_EQ(read(number, 3), "0: sixteen letters. [0A 0B 0C 0D] 100 154 255");
    sent();
  }
}

TEST_F(Presets, RecordsThatHoldAOneAreLeft) {
  const Bytes data = bytes({9, 2, 9, 9, 0, 1, 9, 9, 8, 8, 8, 8, 7, 7, 7, 1});
  EXPECT_EQ(serial.Preset("", 3, text, 6, data, 5), 0) << "any text but R writes";
  EXPECT_EQ(sent().substr(65),
            "write 4 H 183A 09 02 09 09; write 4 H 183C 08 08 08 08; "
            "write 2 V 660C 05 FF; read  1 V 6612; write 1 V 6612 02");
  EXPECT_EQ(read(3, 3), "0: sixteen letters. [09 02 09 09] 5 0 0");
  read(92, 99);
  EXPECT_EQ(requests.at(101), "read  4 H FCC6") << "the last record there is";
}

TEST_F(Presets, ChecksInOrder) {
  for (const Byte number : List{0, 93, 255}) EXPECT_EQ(serial.Preset("W", number, "", 2, ""), 113);
  for (const Byte last : List{0, 2, 100, 255}) EXPECT_EQ(serial.Preset("W", 5, "", last, ""), 112);
  EXPECT_EQ(serial.Preset("W", 5, text, 4, record), 104);
  for (const std::size_t size : {15U, 17U})
    EXPECT_EQ(serial.Preset("W", 5, Bytes(size, 'x'), 3, record), 104);
  const Byte bad[][2] = {{0, 0}, {4, 0}, {201, 0}, {5, 1}, {5, 4}, {5, 201}, {55, 201}, {56, 200}, {200, 56}};
  for (const auto& [d1, d2] : bad) EXPECT_EQ(write(5, d1, d2), 105) << int{d1} << " " << int{d2};
  EXPECT_EQ(sent(), "");
  const Byte good[][2] = {{5, 0}, {200, 0}, {5, 5}, {55, 200}, {200, 55}};
  for (const auto& [d1, d2] : good) EXPECT_EQ(write(5, d1, d2), 0) << int{d1} << " " << int{d2};
  expectEndAtEveryRefusal([&] { return write(3); });
  expectEndAtEveryRefusal([&] { return read(3, 4), result; });
  openWith("status=7@3");
  EXPECT_EQ(read(3, 4), "7: sixteen letters. [0A 0B 0C 0D] 1 1 1") << "what was read before stays";
}

class SimulationRecords : public WatchedHouse {};

TEST_F(SimulationRecords, ListsOfEveryLength) {
  const std::tuple<std::size_t, std::size_t, const char*, std::size_t> rows[] = {
      {0, 1, "write 1 H+ 00FB FF", 1},
      // The end mark is the last byte of its block, where no record can start yet.
      {15, 16, "write 16 H+ 00FB 00 59 FF 00 07 01 59 FF 00 07 02 59 FF 00 07 FF", 2},
      {20, 21, "write 5 H+ 10FB 59 FF 00 07 FF", 2},
      {80, 81, "write 1 H+ 50FB FF", 6},
      {250, 251, "write 11 H+ F0FB 48 59 FF 00 07 49 59 FF 00 07 FF", 16},
      {254, 255, "write 15 H+ F0FB 48 59 FF 00 07 49 59 FF 00 07 50 59 FF 00 FF", 16},
      {255, 255, "write 15 H+ F0FB 48 59 FF 00 07 49 59 FF 00 07 50 59 FF 00 07", 16},
  };
  Bytes records;
  for (int i = 0; i < 51; ++i) records += bytes({i, 59, 255, 0, 7});
  for (const auto& [size, stored, lastWrite, reads] : rows) {
    SCOPED_TRACE(size);
    setMemory(0, 251, Bytes(256, '\0'), link::Area::highBlock);
    requests.clear();
    Bytes data = records.substr(0, size);
    EXPECT_EQ(serial.Simulation("W", 6, 23, data), 0);
    EXPECT_EQ(data.size(), stored) << "the end mark is appended to the caller's text";
    EXPECT_EQ(requests.size(), (stored + 15) / 16);
    EXPECT_EQ(std::exchange(requests, {}).back(), lastWrite);
    EXPECT_EQ(serial.Simulation("R", 6, 23, data), 0);
    EXPECT_EQ(data.size(), size < 254 ? size : 256) << "without an end mark the whole page";
    EXPECT_EQ(data.substr(0, size), records.substr(0, size));
    EXPECT_EQ(requests.size(), reads);
  }
}

TEST_F(SimulationRecords, TimesFromBcd) {
  const std::pair<Bytes, Bytes> rows[] = {
      {bytes({0x23, 0x59, 1, 2, 3, 0x07, 0x30}), bytes({23, 59, 1, 2, 3, 7, 30})},
      {bytes({0x12, 0x10, 0xFF, 0xAA, 0xBB, 0x12}), bytes({12, 10, 0xFF, 0xAA, 0xBB, 0x12})},
      {bytes({0x12}), bytes({0x12})}};
  for (const auto& [bcd, numbers] : rows) {
    Bytes data = bcd;
    EXPECT_EQ(serial.ConvertSim(data), numbers);
    EXPECT_EQ(data, numbers) << "the caller's text changes too";
  }
  Bytes bad = bytes({0x12, 0x1A});
  EXPECT_EQ(errorOf([&] { serial.ConvertSim(bad); }), 13);
}

TEST_F(SimulationRecords, BlocksAndAddresses) {
  Bytes data = bytes({12, 34, 1, 2, 3, 56, 7, 8, 9, 10, 11, 12, 13, 14, 15});
  EXPECT_EQ(outcome(serial.Simulation("W", 1, 10, data)),
            "0: write 16 H+ 0034 12 34 01 02 03 56 07 08 09 0A 11 12 0D 0E 0F FF");
  EXPECT_EQ(hex(data), "12 34 01 02 03 56 07 08 09 0A 11 12 0D 0E 0F FF");
  EXPECT_EQ(
      outcome(serial.Simulation("W", 0, 9, data = Bytes(20, '\x05'))),
      "0: write 16 H+ 0009 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05; write 5 H+ 1009 05 05 05 05 FF");
  EXPECT_EQ(outcome(serial.Simulation("R", 0, 9, data)), "0: read  16 H+ 0009; read  16 H+ 1009");
  expectEndAtEveryRefusal([&] { return serial.Simulation("W", 0, 0, data = Bytes(30, '\x05')); });
  expectEndAtEveryRefusal([&] { return serial.Simulation("R", 0, 9, data); });
}

TEST_F(SimulationRecords, BadInput) {
  Bytes data = "old";
  EXPECT_EQ(serial.Simulation("W", 7, 0, data), 105);
  EXPECT_EQ(serial.Simulation("R", 0, 24, data), 105);
  EXPECT_EQ(data, "old");
  EXPECT_EQ(serial.Simulation("W", 0, 0, data = bytes({10, 160})), 100);
  EXPECT_EQ(data, bytes({0x10, 160})) << "converted up to the fault";
  EXPECT_EQ(serial.Simulation("W", 0, 0, data = bytes({10})), 100) << "half a time";
  EXPECT_EQ(sent(), "");
  EXPECT_EQ(serial.Simulation("W", 0, 0, data = Bytes(300, '\x05')), 100) << "no page holds it";
  EXPECT_EQ(requests.size(), 16U);
  setMemory(0, 0, bytes({0x1A, 0, 0, 0, 0, 255}), link::Area::highBlock);
  EXPECT_EQ(serial.Simulation("R", 0, 0, data), 100) << "a stored time that is no BCD";
}

class SwitchTimes : public WatchedHouse {
 protected:
  /// The result, then block 100 as it comes back: "0: days 85, 23:59, [7C 01]".
  std::string read() {
    Byte days = 1, hour = 2, minute = 3;
    Bytes data = "old";
    result = serial.SwitchTime("R", 100, days, hour, minute, data);
    return std::to_string(result) + ": days " + std::to_string(days) + ", " + std::to_string(hour) + ":" +
           std::to_string(minute) + ", [" + hex(data) + "]";
  }

  static Bytes entries(int count) {
    Bytes list;
    for (int i = 0; i < count; ++i) list += bytes({3 + i, 1, 2});
    return list;
  }

  Byte result = 0;
};

TEST_F(SwitchTimes, WritesAsTheFormAsks) {
  const struct {
    Byte days, hour, minute;
    Bytes data;
    const char* outcome;
  } rows[] = {
      {0, 0, 0, "xyz", "0: write 4 V 83C8 00 00 00 00"},
      {5, 7, 30, "", "0: write 4 V 83C8 80 30 07 00"},
      {128, 7, 75, "xyz", "0: write 4 V 83C8 80 15 07 00"},
      {0, 25, 0, "xyz", "0: write 4 V 83C8 80 00 01 00"},
      {0, 0, 60, "xyz", "0: write 4 V 83C8 80 00 00 00"},
      {127, 23, 59, bytes({101, 4}), "0: write 7 V 83C8 FF 59 23 65 04 00 00"},
      {192, 24, 0, bytes({124, 1}), "0: write 7 V 83C8 C0 00 00 7C 01 00 00"},
      {255, 1, 2, bytes({99, 1, 2, 120, 5, 6}), "0: write 10 V 83C8 7F 02 01 63 01 02 78 05 06 00"},
      {1, 0, 0, bytes({3, 0, 0}), "0: write 7 V 83C8 01 00 00 03 00 00 00"},
      {1, 1, 1, entries(3), "0: write 13 V 83C8 01 01 01 03 01 02 04 01 02 05 01 02 00"},
      {1, 1, 1, entries(4),
       "0: write 15 V 83C8 01 01 01 03 01 02 04 01 02 05 01 02 06 01 02; write 1 V 83D7 00"},
      {1, 1, 1, entries(10),
       "0: write 15 V 83C8 01 01 01 03 01 02 04 01 02 05 01 02 06 01 02; "
       "write 15 V 83D7 07 01 02 08 01 02 09 01 02 0A 01 02 0B 01 02; write 4 V 83E6 0C 01 02 00"},
  };
  for (const auto& row : rows) {
    const auto write = [&] { return serial.SwitchTime("W", 3, row.days, row.hour, row.minute, row.data); };
    EXPECT_EQ(outcome(write()), row.outcome);
    expectEndAtEveryRefusal(write);
  }
  EXPECT_EQ(outcome(serial.SwitchTime("W", 127, 0, 0, 0, "")), "0: write 4 V FFC8 00 00 00 00") << "the last";
}

TEST_F(SwitchTimes, WrongData) {
  const auto write = [&](const Bytes& data) { return serial.SwitchTime("W", 3, 1, 1, 1, data); };
  for (const auto& data :
       {bytes({110, 1, 1}), bytes({100}), bytes({3}), entries(2) + "x", Bytes(70001, '\x05')})
    EXPECT_EQ(write(data), 104);
  for (const auto& data :
       {bytes({100, 1}), bytes({125, 1}), bytes({101, 0}), bytes({101, 5}), bytes({2, 1, 1})})
    EXPECT_EQ(write(data), 105);
  EXPECT_EQ(serial.SwitchTime("W", 128, 0, 0, 0, ""), 100);
  EXPECT_EQ(sent(), "");
  for (const auto& [before, written] : {std::pair(3, 0U), {4, 1U}, {8, 1U}}) {
    EXPECT_EQ(write(entries(before) + bytes({2, 0, 0})), 105);
    EXPECT_EQ(std::exchange(requests, {}).size(), written) << "what was full before the fault stays written";
  }
  EXPECT_EQ(write(entries(40)), 100) << "the fifth piece would begin behind the page";
  EXPECT_EQ(requests.size(), 4U);
}

TEST_F(SwitchTimes, ReadsUpToTheEndOfTheList) {
  const std::vector<std::pair<Bytes, std::string>> rows{
      {bytes({0x80, 0x59, 0x23, 0}), "0: days 0, 23:59, []"},
      {bytes({0xD5, 0x59, 0x23, 124, 1, 0, 0}), "0: days 85, 23:59, [7C 01]"},
      {bytes({0x7F, 0, 0, 100, 1, 2, 101, 3, 0}), "0: days 127, 0:0, [64 01 02 65 03]"},
      {bytes({1, 0, 0}) + entries(3) + '\0', "0: days 1, 0:0, [03 01 02 04 01 02 05 01 02]"},
      {bytes({1, 0, 0}) + entries(4) + '\0', "0: days 1, 0:0, [" + hex(entries(4)) + "]"},
      {bytes({1, 0, 0}) + entries(14) + '\0', "0: days 1, 0:0, [" + hex(entries(14)) + "]"},
      // A time that is no BCD, and a list without an end.
      {bytes({0xD5, 0x5A, 0x23, 0}), "100: days 85, 23:3, []"},
      {bytes({1, 0, 0}) + Bytes(57, '\x05'), "100: days 1, 0:0, [" + hex(Bytes(57, '\x05')) + "]"},
  };
  for (const auto& [stored, block] : rows) {
    setMemory(228, 200, stored);
    EXPECT_EQ(read(), block);
  }
  EXPECT_EQ(requests.size(), 4 * 1U + 2U + 4U + 1U + 4U) << "no read behind the end of a list";
  EXPECT_EQ(sent().substr(11 * 17), "read  15 V E4C8; read  15 V E4D7; read  15 V E4E6; read  15 V E4F5");
  expectEndAtEveryRefusal([&] { return read(), result; });
  for (const std::size_t cut : {1, 2}) {  // bytes of an entry in front of the end of a reply
    openWith("short=" + std::to_string(16 + cut) + "@1");
    EXPECT_EQ(read(), "100: days 1, 0:0, [" + hex(Bytes(cut == 1 ? 45 : 47, '\x05')) + "]");
  }
}

}  // namespace
}  // namespace velk::test
