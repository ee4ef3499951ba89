#include "modules/module_house.h"

namespace velk::test {
namespace {

TEST(VersionTest, OrderAndTimes) {
  ModuleHouse house;
  EXPECT_EQ(house.serial.RXModuleVersie("090500"), 0);
  EXPECT_EQ(house.requests,
            (Requests{"write 16 V 000A DE 00 4F 09 05 00 20 20 20 20 20 20 20 20 20 20", "write 1 V 0000 FF",
                      "read  1 V 0000", "read  1 V 000A", "read  16 V 0010"}));
  EXPECT_EQ(house.spent(), 100 + 100 + 5);
  house.restart();
  EXPECT_EQ(house.serial.RXModuleVersie("ab1234"), 0) << "number 0 has no identification";
  EXPECT_TRUE(house.requests.empty());
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
