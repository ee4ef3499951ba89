#include "support/simulated_house.h"

namespace velk::test {
namespace {

using Requests = std::vector<std::string>;
using simulator::Memory;

class Presets : public SimulatedHouse {
 protected:
  void SetUp() override { open(LinkKind::ethernetQ); }

  struct Scene {
    std::string text = "sixteen letters.";
    Bytes data = bytes({10, 11, 12, 13, 20, 21, 22, 23});
    Byte delay1 = 5;
    Byte delay2 = 0;
    Byte simulation = 0;
    friend bool operator==(const Scene&, const Scene&) = default;
  };

  Byte write(int number, Scene scene, int last = 4) { return call("W", number, last, scene); }
  Byte call(const std::string& direction, int number, int last, Scene& s) {
    return serial.Preset(direction, static_cast<Byte>(number), s.text, static_cast<Byte>(last), s.data,
                         s.delay1, s.delay2, s.simulation);
  }
};

TEST_F(Presets, Addresses) {
  const std::vector<std::pair<int, int>> high{{0, 12},   {1, 16},   {28, 124}, {29, 128},
                                              {60, 252}, {61, 128}, {92, 252}, {93, 128}};
  for (const auto& [number, page] : high)
    EXPECT_EQ(serial.DPHPreset(static_cast<Byte>(number)), page) << number;
  const std::vector<std::tuple<int, int, int>> low{{1, 3, 58},     {28, 200, 255}, {29, 3, 3},
                                                   {60, 255, 255}, {61, 3, 102},   {92, 156, 255},
                                                   {0, 9, 0},      {93, 255, 0},   {255, 1, 0}};
  for (const auto& [number, record, offset] : low) {
    EXPECT_EQ(serial.DPLPreset(static_cast<Byte>(number), static_cast<Byte>(record)), offset) << number;
  }
  EXPECT_EQ(errorOf([&] { serial.DPLPreset(28, 201); }), 6);
  EXPECT_EQ(errorOf([&] { serial.DPLPreset(61, 157); }), 6);
}

TEST_F(Presets, WriteAndReadEveryGroup) {
  for (const int number : {1, 28, 29, 60, 61, 92}) {
    const Scene scene{.delay1 = 100, .delay2 = 155, .simulation = 255};
    EXPECT_EQ(write(number, scene), 0);
    Scene back{.text = "", .data = "old", .delay1 = 0, .delay2 = 0, .simulation = 0};
    EXPECT_EQ(call("R", number, 4, back), 0);
    Scene expected = scene;
    expected.delay2 = 0;  // 100 + 155 reach 255, which stands for no second delay
    EXPECT_EQ(back, expected) << number;
  }
  EXPECT_EQ(write(3, {.delay1 = 100, .delay2 = 154}), 0);
  Scene back;
  EXPECT_EQ(call("R", 3, 4, back), 0);
  EXPECT_EQ(back.delay2, 154);
}

TEST_F(Presets, TransactionsInOrder) {
  setMemory(102, 18, bytes({0x0F}));
  requests.clear();
  EXPECT_EQ(write(3, {.data = bytes({9, 2, 9, 9, 0, 1, 9, 9, 8, 8, 8, 8})}, 5), 0);
  EXPECT_EQ(requests, (Requests{"write 16 V 2528 73 69 78 74 65 65 6E 20 6C 65 74 74 65 72 73 2E",
                                "write 4 H 183A 09 02 09 09", "write 4 H 183C 08 08 08 08",
                                "write 2 V 660C 05 FF", "read  1 V 6612", "write 1 V 6612 0B"}));
  Scene scene;
  requests.clear();
  EXPECT_EQ(call("R", 3, 3, scene), 0);
  EXPECT_EQ(requests, (Requests{"read  16 V 2528", "read  4 H 183A", "read  2 V 660C", "read  1 V 6612"}));
  EXPECT_EQ(scene.delay2, 0);
}

TEST_F(Presets, ChecksInOrder) {
  Scene scene;
  for (const int number : {0, 93, 255}) EXPECT_EQ(write(number, scene, 2), 113);
  for (const int last : {0, 2, 100, 255}) EXPECT_EQ(write(5, scene, last), 112);
  EXPECT_EQ(write(5, scene, 5), 104);
  EXPECT_EQ(write(5, {.text = "short", .delay1 = 0}), 104);
  EXPECT_EQ(write(5, {.text = Bytes(17, 'x')}), 104);
  for (const auto& [d1, d2] :
       std::vector<std::pair<int, int>>{{4, 0}, {201, 0}, {5, 4}, {5, 201}, {100, 156}, {0, 0}}) {
    EXPECT_EQ(write(5, {.delay1 = static_cast<Byte>(d1), .delay2 = static_cast<Byte>(d2)}), 105)
        << d1 << " " << d2;
  }
  EXPECT_TRUE(requests.empty());
  EXPECT_EQ(call("r", 5, 4, scene), 0) << "any text but R writes";
  EXPECT_EQ(requests[0].substr(0, 5), "write");
}

TEST_F(Presets, AFailedTransactionEndsTheCall) {
  for (int step = 1; step <= 6; ++step) {
    openWith("status=7@" + std::to_string(step));
    EXPECT_EQ(write(3, {}), 7) << step;
    EXPECT_EQ(requests.size(), static_cast<std::size_t>(step));
  }
  openWith("status=7@3");
  Scene scene{.text = "", .data = "old"};
  EXPECT_EQ(call("R", 3, 4, scene), 7);
  EXPECT_EQ(scene.data.size(), 4U) << "the record that was read stays";
}

class SimulationRecords : public SimulatedHouse {
 protected:
  void SetUp() override { open(LinkKind::ethernetQ); }
};

TEST_F(SimulationRecords, RoundTripOfEveryLength) {
  for (const std::size_t records : {0U, 1U, 3U, 4U, 16U, 50U, 51U}) {
    Bytes list;
    for (std::size_t i = 0; i < records; ++i) list += bytes({static_cast<int>(i), 59, 255, 0, 7});
    Bytes data = list;
    ASSERT_EQ(serial.Simulation("W", 6, 23, data), 0) << records;
    EXPECT_EQ(data.size(), records * 5 + (records * 5 < 255 ? 1 : 0));
    data = "old";
    EXPECT_EQ(serial.Simulation("R", 6, 23, data), 0);
    // Without an end mark the whole page comes back, its last byte too.
    EXPECT_EQ(data, records == 51 ? list + '\0' : list);
  }
}

TEST_F(SimulationRecords, BlocksAndAddresses) {
  Bytes data = bytes({12, 34, 1, 2, 3, 56, 7, 8, 9, 10, 11, 12, 13, 14, 15});
  EXPECT_EQ(serial.Simulation("W", 1, 10, data), 0);
  EXPECT_EQ(data, bytes({0x12, 0x34, 1, 2, 3, 0x56, 7, 8, 9, 10, 0x11, 0x12, 13, 14, 15, 255}));
  EXPECT_EQ(requests, (Requests{"write 16 H+ 0034 12 34 01 02 03 56 07 08 09 0A 11 12 0D 0E 0F FF"}));
  requests.clear();
  Bytes longer = bytes({1, 2, 3, 4, 5, 1, 2, 3, 4, 5, 1, 2, 3, 4, 5, 1, 2, 3, 4, 5});
  EXPECT_EQ(serial.Simulation("W", 0, 9, longer), 0);
  EXPECT_EQ(requests[1], "write 5 H+ 1009 02 03 04 05 FF");
  requests.clear();
  EXPECT_EQ(serial.Simulation("R", 0, 9, longer), 0);
  EXPECT_EQ(requests, (Requests{"read  16 H+ 0009", "read  16 H+ 1009"}));
}

TEST_F(SimulationRecords, BadInput) {
  Bytes data = "old";
  EXPECT_EQ(serial.Simulation("W", 7, 0, data), 105);
  EXPECT_EQ(serial.Simulation("R", 0, 24, data), 105);
  EXPECT_EQ(data, "old");
  EXPECT_TRUE(requests.empty());
  data = bytes({10, 160});
  EXPECT_EQ(serial.Simulation("W", 0, 0, data), 100);
  EXPECT_EQ(data, bytes({0x10, 160})) << "converted up to the fault";
  data = bytes({10});
  EXPECT_EQ(serial.Simulation("W", 0, 0, data), 100);
  EXPECT_TRUE(requests.empty());
  data = Bytes(300, '\x05');
  EXPECT_EQ(serial.Simulation("W", 0, 0, data), 100) << "no page holds it";
  EXPECT_EQ(requests.size(), 16U);
  setMemory(0, 0, bytes({0x1A, 0, 0, 0, 0, 255}), Memory::highBlock);
  data = "old";
  EXPECT_EQ(serial.Simulation("R", 0, 0, data), 100);
  openWith("status=7@2");
  EXPECT_EQ(serial.Simulation("W", 0, 0, data = Bytes(30, '\x05')), 7);
  EXPECT_EQ(requests.size(), 2U);
}

TEST_F(SimulationRecords, EndMarkCountsAtTheStartOfARecord) {
  setMemory(0, 0, bytes({0x01, 0x02, 255, 255, 255, 255, 9}), Memory::highBlock);
  Bytes data;
  EXPECT_EQ(serial.Simulation("R", 0, 0, data), 0);
  EXPECT_EQ(data, bytes({1, 2, 255, 255, 255}));
}

class SwitchTimes : public SimulatedHouse {
 protected:
  void SetUp() override { open(LinkKind::ethernetQ); }

  Byte write(int block, int days, int hour, int minute, Bytes data) {
    requests.clear();
    return serial.SwitchTime("W", static_cast<Byte>(block), static_cast<Byte>(days), static_cast<Byte>(hour),
                             static_cast<Byte>(minute), data);
  }
  static Bytes entries(int count) {
    Bytes list;
    for (int i = 0; i < count; ++i) list += bytes({3 + i, 1, 2});
    return list;
  }
};

TEST_F(SwitchTimes, WritesAsTheFormAsks) {
  const struct {
    int days, hour, minute;
    Bytes data;
    Requests requests;
  } rows[] = {
      {0, 0, 0, "xyz", {"write 4 V 83C8 00 00 00 00"}},
      {5, 7, 30, "", {"write 4 V 83C8 80 30 07 00"}},
      {128, 7, 75, "xyz", {"write 4 V 83C8 80 15 07 00"}},
      {0, 25, 0, "xyz", {"write 4 V 83C8 80 00 01 00"}},
      {127, 23, 59, bytes({101, 4}), {"write 7 V 83C8 FF 59 23 65 04 00 00"}},
      {255, 1, 2, bytes({3, 1, 2, 120, 5, 6}), {"write 10 V 83C8 7F 02 01 03 01 02 78 05 06 00"}},
      {1,
       1,
       1,
       entries(4),
       {"write 15 V 83C8 01 01 01 03 01 02 04 01 02 05 01 02 06 01 02", "write 1 V 83D7 00"}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(write(3, row.days, row.hour, row.minute, row.data), 0);
    EXPECT_EQ(requests, row.requests);
  }
  EXPECT_EQ(write(0, 1, 1, 1, entries(9)), 0);
  ASSERT_EQ(requests.size(), 3U);
  EXPECT_EQ(requests[1].substr(0, 15), "write 15 V 80D7");
  EXPECT_EQ(requests[2], "write 1 V 80E6 00");
}

TEST_F(SwitchTimes, WrongData) {
  for (const auto& data :
       {bytes({110, 1, 1}), bytes({100}), bytes({3}), entries(2) + "x", Bytes(70001, '\x05')}) {
    EXPECT_EQ(write(3, 1, 1, 1, data), 104);
  }
  for (const auto& data :
       {bytes({100, 1}), bytes({125, 1}), bytes({101, 0}), bytes({101, 5}), bytes({2, 1, 1})}) {
    EXPECT_EQ(write(3, 1, 1, 1, data), 105);
    EXPECT_TRUE(requests.empty());
  }
  EXPECT_EQ(write(3, 1, 1, 1, entries(6) + bytes({2, 0, 0})), 105);
  EXPECT_EQ(requests.size(), 1U) << "what was full before the fault stays written";
  EXPECT_EQ(write(128, 0, 0, 0, ""), 100);
  EXPECT_TRUE(requests.empty());
  EXPECT_EQ(write(3, 1, 1, 1, entries(40)), 100);
  EXPECT_EQ(requests.size(), 4U);
}

TEST_F(SwitchTimes, ReadsBack) {
  for (const Bytes& data :
       {Bytes(), bytes({124, 1}), entries(1), entries(3), entries(4), entries(5), entries(14)}) {
    EXPECT_EQ(write(100, 85, 23, 59, data), 0);
    Byte days = 0;
    Byte hour = 0;
    Byte minute = 0;
    Bytes back = "old";
    EXPECT_EQ(serial.SwitchTime("R", 100, days, hour, minute, back), 0);
    EXPECT_EQ(back, data);
    EXPECT_EQ(days, data.empty() ? 0 : 85);
    EXPECT_EQ(hour * 100 + minute, 2359);
  }
  setMemory(228, 201, bytes({0x5A}));
  Byte days = 0;
  Byte hour = 0;
  EXPECT_EQ(serial.SwitchTime("R", 100, days, hour, 0, ""), 100);
  EXPECT_EQ(days, 85) << "set before the time turned out to be no BCD";
  setMemory(228, 200, bytes({1, 0, 0}) + Bytes(53, '\x05'));
  setMemory(229, 0, Bytes(4, '\x05'));
  Bytes back;
  requests.clear();
  EXPECT_EQ(serial.SwitchTime("R", 100, days, hour, 0, back), 100) << "a list without an end";
  EXPECT_EQ(requests.size(), 4U);
  EXPECT_GE(back.size(), 53U);
  openWith("status=7@2");
  EXPECT_EQ(serial.SwitchTime("R", 100, days, hour, 0, back), 7);
  EXPECT_EQ(back.size(), 12U);
}

}  // namespace
}  // namespace velk::test
