#include "modules/module_house.h"

namespace velk::test {
namespace {

Byte sample(ModuleHouse& house, const char* direction, const char* serialNumber, int number, int bank,
            Bytes& data) {
  return house.serial.Sample(direction, serialNumber, static_cast<Byte>(number), static_cast<Byte>(bank),
                             data);
}

TEST(SampleTest, WriteAndReadInBothBanks) {
  ModuleHouse house;
  Bytes data = counted(20);
  EXPECT_EQ(house.outcome(sample(house, "W", "980500", 3, 1, data)),
            "0: write 16 H+ 001A 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10; "
            "write 16 H+ 101A 11 12 13 14 00 00 00 00 00 00 00 00 00 00 00 00; "
            "write 6 V 000A DE 13 FF 62 05 00; write 1 V 0000 FF; read  1 V 000A");
  Bytes whole = counted(128);
  EXPECT_EQ(sample(house, "W", "980500", 3, 0, whole), 0);
  house.restart();
  EXPECT_EQ(house.outcome(sample(house, "R", "980500", 3, 1, data)),
            "0: write 6 V 000A DE 13 7F 62 05 00; write 1 V 0000 FF; read  1 V 0000; read  1 V 000A; "
            "read  16 H+ 001A; read  16 H+ 101A");
  EXPECT_EQ(data, counted(20) + Bytes(12, '\0'));
  EXPECT_EQ(sample(house, "R", "980500", 4, 0, data), 0);
  EXPECT_EQ(data, Bytes(16, '\0')) << "one block that ends with 0";
  for (const auto& [fault, result] : {std::pair{"status=7@13", 0}, std::pair{"status=7@12", 7}}) {
    house.reopen({fault});
    EXPECT_EQ(sample(house, "R", "980500", 3, 0, data), result) << fault;
    EXPECT_EQ(data, result == 0 ? counted(128) : "") << fault << " is behind or in the last block";
    EXPECT_EQ(house.requests.back(), "read  16 H+ 701A");
  }
}

/// What a call that is refused does: the checks come first, but what no header holds is found when it is
/// made, which a write does behind its blocks.
TEST(SampleTest, RefusedCalls) {
  const struct {
    const char* serialNumber;
    int number, bank, result;
    std::size_t written = 0;  ///< requests of a write
  } rows[] = {{"98050", 254, 0, 106},    {"980101", 240, 0, 104},   {"989999", 255, 0, 104},
              {"090500", 254, 0, 102},   {"980100", 255, 0, 102},   {"990000", 254, 0, 102},
              {"980100", 240, 0, 99, 2}, {"090500", 253, 0, 99, 2}, {"090500", 1, 4, 99, 2},
              {"0905-1", 1, 0, 99, 2}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.serialNumber + (" " + std::to_string(row.number)));
    ModuleHouse house;
    Bytes data = "old";
    EXPECT_EQ(sample(house, "R", row.serialNumber, row.number, row.bank, data), row.result);
    EXPECT_EQ(data, "") << "a read that fails leaves nothing";
    EXPECT_TRUE(house.requests.empty());
    data = counted(17);
    EXPECT_EQ(sample(house, "W", row.serialNumber, row.number, row.bank, data), row.result);
    EXPECT_EQ(data, counted(17));
    EXPECT_EQ(house.requests.size(), row.written);
  }
  ModuleHouse house({"status=7@2"});
  Bytes data = counted(17);
  EXPECT_EQ(sample(house, "W", "0905-1", 1, 0, data), 7) << "a block that fails comes first";
  EXPECT_EQ(sample(house, "W", "090500", 1, 0, data = counted(129)), 104);
  EXPECT_EQ(sample(house, "W", "980500", 239, 0, data = counted(1)), 0) << "the last number of its series";
}

}  // namespace
}  // namespace velk::test
