#include "modules/module_house.h"

namespace velk::test {
namespace {

using Requests = std::vector<std::string>;

TEST(VersionTest, ModulesWithoutIdentification) {
  for (const char* const serieNr :
       {"990000", "040100", "044999", "010100", "019999", "000072", "980050", "980099", "ab1234"}) {
    ModuleHouse house;
    EXPECT_EQ(house.serial.RXModuleVersie(serieNr), 0) << serieNr;
    EXPECT_TRUE(house.requests.empty()) << serieNr;
  }
  for (const char* const serieNr : {"000073", "045000", "090000", "980100", "910000", "080001"}) {
    ModuleHouse house;
    EXPECT_EQ(house.serial.RXModuleVersie(serieNr), 255) << serieNr << " is not there";
    EXPECT_FALSE(house.requests.empty()) << serieNr;
  }
}

TEST(VersionTest, OrderAndTimes) {
  ModuleHouse house;
  EXPECT_EQ(house.serial.RXModuleVersie("090500"), 0);
  EXPECT_EQ(house.requests,
            (Requests{"write 16 V 000A DE 00 4F 09 05 00 20 20 20 20 20 20 20 20 20 20", "write 1 V 0000 FF",
                      "read  1 V 0000", "read  1 V 000A", "read  16 V 0010"}));
  EXPECT_EQ(house.spent(), 100 + 100 + 5);
}

TEST(VersionTest, OldModulesTakeTheRequestWithoutTheReadFlag) {
  const std::pair<const char*, const char*> rows[] = {
      {"120100", "0F 0C 01 00"}, {"120799", "0F 0C 07 63"}, {"120800", "4F 0C 08 00"},
      {"045500", "0F 04 37 00"}, {"045999", "0F 04 3B 63"}, {"046000", "4F 04 3C 00"},
  };
  for (const auto& [serieNr, tail] : rows) {
    ModuleHouse house;
    (void)house.serial.RXModuleVersie(serieNr);
    EXPECT_EQ(house.requests.at(0).substr(0, 31),
              std::string("write 16 V 000A DE 00 ") + std::string(tail).substr(0, 9))
        << serieNr;
  }
}

TEST(VersionTest, NameIsTakenFromTheModuleOrFromTheHost) {
  const struct {
    const char* serieNr;
    std::string given, model;
    int cpu;
    std::string firmware;
    bool known;
  } rows[] = {
      {"090500", "", "MT007/500VA", 48, "0105", true},
      {"090500", "MT001", "MT001", 48, "0105", true},
      {"090500", "MT00", "MT007/500VA", 48, "0105", true},
      {"090500", "nonsense", "MT007/500VA", 48, "0105", true},
      {"090100", "", "", 0, "", false},
      {"090100", "01|MT", "01|MT", 48, "0009", true},
      {"010100", "MT037xyz", "MT037xyz", 0, "", true},
      {"010100", "MT036", "MT036", 0, "", false},
  };
  for (const auto& row : rows) {
    ModuleHouse house;
    Record record{.model = row.given, .cpu = 7, .firmware = "old"};
    EXPECT_EQ(house.read(row.serieNr, record), 0) << row.serieNr;
    EXPECT_EQ(record.model, row.model);
    EXPECT_EQ(record.cpu, row.cpu);
    EXPECT_EQ(record.firmware, row.firmware);
    EXPECT_EQ(record.offset, row.known ? 2 : 1) << row.serieNr << " " << row.given;
  }
}

TEST(VersionTest, Failures) {
  const struct {
    simulator::Faults faults;
    int result;
    int milliseconds;
  } rows[] = {
      {{"code=127@1"}, 127, 202 + 501},
      {{"code=128@1"}, 128, 202 + 501},
      {{"code=255@1"}, 255, 202 + 501},
      {{"code=1@1"}, 100, 202 + 501},
      {{"code=222@1"}, 100, 202 + 501},
      {{"stuck@1"}, 107, 202 + 500},
      {{"busy=400@1"}, 0, 205 + 400},
      {{"busy=600@1"}, 107, 202 + 500},
      {{"pending=400@1"}, 0, 205 + 400},
      {{"pending=600@1"}, 100, 202 + 501},
      {{"status=7@1"}, 7, 1},
      {{"status=7@2"}, 7, 102},
      {{"status=7@3"}, 0, 206},
      {{"status=7@3-"}, 107, 202 + 500},
      {{"status=7@4"}, 0, 206},
      {{"status=7@4-"}, 100, 202 + 501},
      {{"status=7@5"}, 7, 205},
  };
  int number = 0;
  for (const auto& row : rows) {
    ModuleHouse house(row.faults);
    EXPECT_EQ(house.serial.RXModuleVersie("090500"), row.result) << number;
    EXPECT_NEAR(house.spent(), row.milliseconds, 4)
        << number << ": the clock of a day counts in steps of 4 ms";
    ++number;
  }
}

TEST(VersionTest, ErrorsBecomeTheirCode) {
  simulator::LoopbackHost host;
  Serial serial(host);
  EXPECT_EQ(serial.RXModuleVersie("090500"), 55) << "no port is open";
  EXPECT_EQ(serial.Module("R", "090500", ""), 55) << "also when Module asks";
  EXPECT_EQ(serial.Module("R", "010100", ""), 99) << "an error in Module itself";
  ModuleHouse house;
  EXPECT_EQ(house.serial.RXModuleVersie("-90500"), 100) << "a pair of digits below 0";
}

}  // namespace
}  // namespace velk::test
