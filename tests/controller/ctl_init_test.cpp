#include "support/simulated_house.h"

namespace velk::test {
namespace {

using Requests = std::vector<std::string>;

class CtlInit : public SimulatedHouse {
 protected:
  void SetUp() override {
    open(LinkKind::ethernetQ);
    setMemory(0, 2, bytes({77, 3, 20, 110, 9, 9, 20}));
    setMemory(2, 8, bytes({1, 2, 3}));
    setMemory(255, 247, bytes({0x11, 0x12, 0x59, 0x58, 0x23, 0x03, 0x28, 0x02, 0x24}));
    requests.clear();
  }

  Byte read(Byte count, Byte offset) { return serial.Ctl_Init("R", block, count, offset); }
  Byte write(const Bytes& positions, Byte offset) {
    Bytes copy = positions;
    return serial.Ctl_Init("W", copy, static_cast<Byte>(positions.size()), offset);
  }

  Bytes block = "old";
  const Bytes clock = bytes({24, 2, 29, 3, 23, 58, 59});
};

TEST_F(CtlInit, ReadsWhatTheRangeNames) {
  const struct {
    int count, offset;
    Bytes expected;
    Requests requests;
  } rows[] = {
      {13,
       0,
       bytes({20, 110, 9, 9, 20, 77, 24, 2, 28, 3, 23, 58, 59, 1, 2, 3}),
       {"read  7 V 0002", "read  7 V FFF9", "read  3 V 0208"}},
      {5, 0, bytes({20, 110, 9, 9, 20}), {"read  7 V 0002"}},
      {2, 1, bytes({110, 9}), {"read  7 V 0002"}},
      {1, 5, bytes({77}), {"read  7 V 0002"}},
      {3, 5, bytes({77, 24, 2}), {"read  7 V 0002", "read  2 V FFFE"}},
      {1, 8, bytes({28}), {"read  1 V FFFD"}},
      {0, 2, {}, {"read  7 V 0002"}},
      {1, 13, bytes({1, 2, 3}), {"read  3 V 0208"}},
      {3, 13, bytes({1, 2, 3}), {"read  3 V 0208"}},
      // A range that ends behind the clock takes the hold bytes for clock values.
      {9, 6, bytes({24, 2, 28, 3, 23, 58, 59, 12, 11, 1, 2, 3}), {"read  9 V FFF7", "read  3 V 0208"}},
  };
  for (const auto& row : rows) {
    requests.clear();
    EXPECT_EQ(read(static_cast<Byte>(row.count), static_cast<Byte>(row.offset)), 0)
        << row.count << " " << row.offset;
    EXPECT_EQ(block, row.expected) << row.count << " " << row.offset;
    EXPECT_EQ(requests, row.requests) << row.count << " " << row.offset;
  }
  requests.clear();
  EXPECT_EQ(read(0, 6), 99);
  EXPECT_TRUE(requests.empty());
  read(0, 9);
  EXPECT_EQ(requests, (Requests{"read  16 V FFFD"})) << "a count of 0 on the wire";
}

TEST_F(CtlInit, KindIsDerived) {
  const std::vector<std::tuple<int, int, int>> table{{0, 5, 0},  {1, 0, 2},   {8, 255, 2},
                                                     {9, 13, 2}, {9, 14, 77}, {200, 0, 77}};
  for (const auto& [a, b, kind] : table) {
    setMemory(0, 7, bytes({a, b}));
    EXPECT_EQ(read(1, 5), 0);
    EXPECT_EQ(block, bytes({kind})) << a << " " << b;
  }
}

TEST_F(CtlInit, ArgumentsInOrder) {
  EXPECT_EQ(serial.Ctl_Init("r", "", 255, 255), 101);
  EXPECT_EQ(read(255, 14), 103);
  EXPECT_EQ(read(13, 4), 102);
  EXPECT_EQ(read(255, 13), 102);
  EXPECT_EQ(serial.Ctl_Init("W", "x", 2, 0), 104);
  EXPECT_EQ(serial.Ctl_Init("", Bytes(70000, 'x'), 3, 0), 104);
  for (const auto& [count, offset] :
       std::vector<std::pair<int, int>>{{7, 0}, {12, 0}, {1, 6}, {5, 8}, {6, 8}, {3, 13}}) {
    EXPECT_EQ(write(Bytes(static_cast<std::size_t>(count), '\x05'), static_cast<Byte>(offset)), 104)
        << count << offset;
  }
  EXPECT_TRUE(requests.empty());
}

TEST_F(CtlInit, EveryPositionHasItsRange) {
  const Bytes good = bytes({10, 104, 0, 0, 0, 0}) + clock;
  const struct {
    int position, low, high;
  } rows[] = {{1, 10, 99}, {2, 104, 128}, {8, 1, 12},  {10, 0, 7},
              {11, 0, 23}, {12, 0, 59},   {13, 0, 59}, {7, 0, 99}};
  for (const auto& row : rows) {
    for (const int value : {row.low - 1, row.high + 1, 255}) {
      if (value < 0) continue;
      Bytes bad = good;
      bad[static_cast<std::size_t>(row.position - 1)] = character(value);
      EXPECT_EQ(write(bad, 0), 105) << row.position << " " << value;
    }
  }
  EXPECT_TRUE(requests.empty());
  const std::vector<std::tuple<int, int, int, int>> dates{
      {24, 2, 29, 0}, {23, 2, 29, 105}, {23, 2, 28, 0},  {24, 4, 31, 105},
      {24, 4, 30, 0}, {24, 12, 31, 0},  {24, 1, 0, 105}, {24, 13, 200, 105}};
  for (const auto& [year, month, day, result] : dates) {
    EXPECT_EQ(write(bytes({year, month, day, 0, 0, 0, 0}), 6), result) << year << "-" << month << "-" << day;
  }
}

TEST_F(CtlInit, SettingTheClockHoldsIt) {
  EXPECT_EQ(write(bytes({99, 128, 255, 1, 2, 3}) + clock, 0), 0);
  EXPECT_EQ(requests,
            (Requests{"write 3 V 0004 63 80 FF", "write 1 V FFF7 FF", "write 1 V FFF8 FF",
                      "write 7 V FFF9 59 58 23 03 29 02 24", "write 1 V FFF8 00", "write 1 V FFF7 00"}));
  requests.clear();
  EXPECT_EQ(write(bytes({10, 104, 7, 1, 2, 3}), 0), 0);
  EXPECT_EQ(write(bytes({7, 1, 2, 3}), 2), 0);
  EXPECT_EQ(requests, (Requests{"write 3 V 0004 0A 68 07", "write 1 V 0006 07"}));
  EXPECT_EQ(write(bytes({1, 2, 3}), 3), 99) << "positions 4 to 6 are never written";
  EXPECT_EQ(write("", 0), 99);
  requests.clear();
  // The clock takes the last seven characters, wherever the range ends.
  EXPECT_EQ(write(clock + bytes({1, 2, 3}), 6), 0);
  EXPECT_EQ(requests[2], "write 7 V FFF9 03 02 01 59 58 23 03");
}

TEST_F(CtlInit, RangesThatCannotBeWrittenAreRunTimeErrors) {
  EXPECT_EQ(write(bytes({2, 1, 1, 1, 1, 1}), 7), 100) << "February asks for a year that is not there";
  EXPECT_TRUE(requests.empty());
  EXPECT_EQ(write(bytes({3, 1, 1, 1, 1, 1}), 7), 100) << "six characters are no clock, and it stays held";
  EXPECT_EQ(requests, (Requests{"write 1 V FFF7 FF", "write 1 V FFF8 FF"}));
  EXPECT_EQ(write(clock + bytes({160}), 6), 100) << "no BCD";
  setMemory(255, 250, bytes({0x5A}));
  EXPECT_EQ(read(13, 0), 100);
  EXPECT_EQ(block, bytes({20, 110, 9, 9, 20, 77})) << "what was read before stays";
}

TEST_F(CtlInit, AFailedTransactionEndsTheCall) {
  for (int step = 1; step <= 6; ++step) {
    openWith("status=7@" + std::to_string(step));
    EXPECT_EQ(write(bytes({99, 128, 255, 1, 2, 3}) + clock, 0), 7) << step;
    EXPECT_EQ(requests.size(), static_cast<std::size_t>(step));
    if (step > 3) continue;
    openWith("silent@" + std::to_string(step));
    EXPECT_EQ(read(13, 0), 252) << step;
  }
  openWith("short=18@1");
  EXPECT_EQ(read(2, 0), 100) << "too short for the kind, which nobody asks for";
}

}  // namespace
}  // namespace velk::test
