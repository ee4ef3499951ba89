#include "modules/module_house.h"

namespace velk::test {
namespace {

using Requests = std::vector<std::string>;

/// Text whose blocks do not end with 0 before its own end.
Bytes text(std::size_t size) {
  return Bytes(size, 'x');
}

Byte write(ModuleHouse& house, const std::string& serieNr, int number, int bank, Bytes data) {
  return house.serial.Sample("W", serieNr, static_cast<Byte>(number), static_cast<Byte>(bank), data);
}

Byte read(ModuleHouse& house, const std::string& serieNr, int number, int bank, Bytes& data) {
  data = "old";
  return house.serial.Sample("R", serieNr, static_cast<Byte>(number), static_cast<Byte>(bank), data);
}

TEST(SampleTest, WriteAndReadInBothBanks) {
  ModuleHouse house;
  EXPECT_EQ(write(house, "980500", 3, 1, text(20)), 0);
  EXPECT_EQ(house.requests,
            (Requests{"write 16 H+ 001A 78 78 78 78 78 78 78 78 78 78 78 78 78 78 78 78",
                      "write 16 H+ 101A 78 78 78 78 00 00 00 00 00 00 00 00 00 00 00 00",
                      "write 6 V 000A DE 13 FF 62 05 00", "write 1 V 0000 FF", "read  1 V 000A"}));
  EXPECT_EQ(house.asked.back(), "module 980500: sample 3 bank B, write");
  EXPECT_EQ(house.spent(), 105);
  EXPECT_EQ(write(house, "980500", 3, 0, text(128)), 0);

  Bytes data;
  house.restart();
  EXPECT_EQ(read(house, "980500", 3, 1, data), 0);
  EXPECT_EQ(data, text(20) + Bytes(12, '\0'));
  EXPECT_EQ(house.requests,
            (Requests{"write 6 V 000A DE 13 7F 62 05 00", "write 1 V 0000 FF", "read  1 V 0000",
                      "read  1 V 000A", "read  16 H+ 001A", "read  16 H+ 101A"}));
  house.restart();
  EXPECT_EQ(read(house, "980500", 3, 0, data), 0);
  EXPECT_EQ(data, text(128));
  EXPECT_EQ(house.requests.back(), "read  16 H+ 701A");
  EXPECT_EQ(read(house, "980500", 4, 0, data), 0);
  EXPECT_EQ(data, Bytes(16, '\0')) << "one block that ends with 0";
}

TEST(SampleTest, ChecksInOrder) {
  ModuleHouse house;
  const struct {
    const char* serieNr;
    int number, result;
  } rows[] = {{"98050", 254, 106},  {"980500", 254, 104}, {"980500", 240, 104}, {"980101", 240, 104},
              {"989999", 255, 104}, {"090500", 254, 102}, {"980100", 255, 102}, {"990000", 255, 102}};
  Bytes data;
  for (const auto& row : rows) {
    EXPECT_EQ(read(house, row.serieNr, row.number, 0, data), row.result) << row.serieNr;
    EXPECT_EQ(data, "") << "a read that fails leaves nothing";
    data = "mine";
    EXPECT_EQ(house.serial.Sample("W", row.serieNr, static_cast<Byte>(row.number), 0, data), row.result);
    EXPECT_EQ(data, "mine");
  }
  EXPECT_EQ(write(house, "090500", 1, 0, text(129)), 104);
  EXPECT_TRUE(house.requests.empty());
  EXPECT_EQ(write(house, "980500", 239, 0, text(1)), 0);
  house.requests.clear();
  EXPECT_EQ(read(house, "090500", 240, 0, data), 99) << "its number does not fit the header";
  EXPECT_EQ(read(house, "090500", 1, 4, data), 99) << "nor does this bank";
  EXPECT_TRUE(house.requests.empty());
}

TEST(SampleTest, AWriteThatNoHeaderHoldsEndsBehindItsBlocks) {
  const struct {
    const char* serieNr;
    int number, bank;
  } rows[] = {{"090500", 240, 0}, {"090500", 253, 0}, {"090500", 1, 2}, {"090500", 1, 255}, {"0905-1", 1, 0}};
  for (const auto& row : rows) {
    ModuleHouse house;
    EXPECT_EQ(write(house, row.serieNr, row.number, row.bank, text(17)), 99) << row.number;
    EXPECT_EQ(house.requests, (Requests{"write 16 H+ 001A 78 78 78 78 78 78 78 78 78 78 78 78 78 78 78 78",
                                        "write 16 H+ 101A 78 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"}))
        << row.number << " bank " << row.bank;
    ModuleHouse failing({"status=7@2"});
    EXPECT_EQ(write(failing, row.serieNr, row.number, row.bank, text(17)), 7)
        << "a block that fails comes first";
  }
}

TEST(SampleTest, FailuresOfAWrite) {
  const std::pair<const char*, int> rows[] = {{"status=7@1", 7}, {"status=7@2", 7},  {"status=7@3", 7},
                                              {"status=7@4", 7}, {"status=7@5", 0},  {"status=7@5-", 7},
                                              {"code=5@1", 5},   {"stuck@1", 222},   {"pending=300@1", 0},
                                              {"busy=300@1", 0}, {"code=255@1", 255}};
  for (const auto& [fault, result] : rows) {
    ModuleHouse house({fault});
    EXPECT_EQ(write(house, "090500", 1, 0, text(20)), result) << fault;
  }
}

TEST(SampleTest, FailuresOfARead) {
  const struct {
    simulator::Faults ofModule, ofLink;
    int result, milliseconds;
  } rows[] = {
      {{}, {"status=7@1"}, 7, 1},       {{}, {"status=7@2"}, 7, 2},          {{}, {"status=7@3"}, 0, 113},
      {{}, {"status=7@3-"}, 7, 602},    {{}, {"status=7@4"}, 0, 113},        {{}, {"status=7@4-"}, 7, 1103},
      {{}, {"status=7@5"}, 7, 105},     {{}, {"status=7@12"}, 7, 112},       {{"stuck@2"}, {}, 255, 602},
      {{"code=5@2"}, {}, 5, 1103},      {{"busy=400@2"}, {}, 0, 512},        {{"busy=600@2"}, {}, 255, 602},
      {{"pending=900@2"}, {}, 0, 1012}, {{"pending=1100@2"}, {}, 222, 1103},
  };
  int number = 0;
  for (const auto& row : rows) {
    ModuleHouse house(row.ofModule);
    ASSERT_EQ(write(house, "090500", 1, 0, text(128)), 0);
    house.reopen(row.ofLink);
    Bytes data;
    EXPECT_EQ(read(house, "090500", 1, 0, data), row.result) << number;
    EXPECT_EQ(data, row.result == 0 ? text(128) : "") << number;
    EXPECT_NEAR(house.spent(), row.milliseconds, 4) << number;
    ++number;
  }
}

}  // namespace
}  // namespace velk::test
