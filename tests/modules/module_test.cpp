#include "modules/module_house.h"

namespace velk::test {
namespace {

TEST(ModuleTest, IsIdentified) {
  ModuleHouse house;
  EXPECT_EQ(house.outcome(house.serial.RXModuleVersie("090500")),
            "0: write 16 V 000A DE 00 4F 09 05 00 20 20 20 20 20 20 20 20 20 20; write 1 V 0000 FF; "
            "read  1 V 0000; read  1 V 000A; read  16 V 0010");
  EXPECT_EQ(house.outcome(house.serial.RXModuleVersie("ab1234")), "0: ") << "0 has no identification";
  EXPECT_EQ(house.serial.RXModuleVersie("-90500"), 100) << "a pair of digits below 0";
  simulator::LoopbackHost host;
  Serial serial(host);
  EXPECT_EQ(serial.RXModuleVersie("090500"), 55) << "no port is open";
  EXPECT_EQ(serial.Module("R", "090500", ""), 55) << "also when Module asks";
  EXPECT_EQ(serial.Module("R", "010100", ""), 99) << "an error in Module itself";
}

TEST(ModuleTest, SerialNumbersHaveSixCharacters) {
  ModuleHouse house;
  for (const char* const number : {"", "09025", "0902555"}) {
    const Record before{.result = 106, .data = "old", .offset = 3, .model = "m"};
    EXPECT_EQ(house.read(number, before), before);
    EXPECT_EQ(house.write(number, before), before);
  }
  EXPECT_TRUE(house.requests.empty());
}

/// Number and direction of each request, the identification in front.
TEST(ModuleTest, HeadersBySerialNumber) {
  const struct {
    const char* headers;
    std::vector<const char*> numbers;
    Byte offset = 0;
    const char* name = "X1";  ///< no known model
  } rows[] = {
      // clang-format off
      {"00 01", {"000072"}}, {"00 04", {"990000"}}, {"00 08", {"044999"}}, {"00 0A", {"010000"}},
      {"00 10", {"980099"}}, {"00 4F, 00 01", {"000073", "009999"}}, {"00 4F, 00 0A", {"090000"}},
      {"00 0F, 00 08", {"045000", "045999", "120000", "120799"}}, {"00 4F, 00 08", {"046000", "120800"}},
      {"00 4F, 00 03", {"830199"}}, {"00 4F, 00 43", {"830200", "839999"}}, {"00 4F, 00 0B", {"840000"}},
      {"00 4F, 00 1F", {"980100", "989999"}}, {"00 4F, 00 10, 01 10, 02 10, 03 10, 04 06", {"119999"}},
      {"00 4F, 01 10, 02 04", {"950999"}, 1}, {"00 4F, 02 0A, 02 10, 03 04", {"950999"}, 2},
      {"00 4F, 02 0A, 02 10, 03 06", {"100000"}, 2}, {"00 4F, 02 0A", {"090000"}, 2},
      {"00 4F, 03 10, 04 10", {"960000"}, 3}, {"00 4F, 02 0A, 02 50, 03 46", {"100000"}, 1, "MT001"},
      {"00 4F, 01 45", {"839999"}, 0, "MT001"}, {"00 4F, 01 1F", {"980100"}, 0, "MT001"},
      // clang-format on
  };
  for (const auto& row : rows) {
    for (const char* const number : row.numbers) {
      ModuleHouse house(number, row.name);
      (void)house.read(number, {.offset = row.offset});
      EXPECT_EQ(house.headers(), row.headers) << number << " " << row.name;
    }
  }
}

TEST(ModuleTest, ReadsPieceByPiece) {
  ModuleHouse house("060001", "SEQ4", counted(80));
  EXPECT_EQ(house.read("060001", {.data = "old"}), (Record{.data = counted(74), .offset = 5}));
  EXPECT_EQ(house.headers(), "00 4F, 00 10, 01 10, 02 10, 03 10, 04 0A");
  EXPECT_EQ(house.last(5),
            "write 16 V 000A DE 04 0A 06 00 01 20 20 20 20 20 20 20 20 20 20; write 1 V 0000 FF; "
            "read  1 V 0000; read  1 V 000A; read  10 V 0010");
}

TEST(ModuleTest, WritesPieceByPiece) {
  ModuleHouse house;
  EXPECT_EQ(house.write("210001", Record{.data = counted(36), .offset = 3}),
            (Record{.data = counted(36), .offset = 6}));
  EXPECT_EQ(house.spent(), 205 + 3 * (4 + 100 + 800) + 2 * 100);
  EXPECT_EQ(house.headers(), "00 4F, 03 D0, 04 D0, 05 C4");
  EXPECT_EQ(house.written(), counted(36));
  EXPECT_EQ(house.last(4),
            "write 6 V 000A DE 05 C4 15 00 01; write 4 V 0010 21 22 23 24; write 1 V 0000 FF; "
            "read  1 V 0000");
  for (const auto& [number, pause] :
       std::map<std::string, int>{{"949999", 100}, {"950000", 2000}, {"950020", 2000}, {"950021", 100}}) {
    ModuleHouse other(number, "X1");
    EXPECT_EQ(other.write(number, counted(20)), 0) << number;
    EXPECT_EQ(other.spent(), 205 + 2 * 904 + pause) << number << ": one series stores slowly";
  }
}

TEST(ModuleTest, TheControllersOwnModule) {
  ModuleHouse house;
  EXPECT_EQ(house.write("000001", Record{.data = "\x02"}), (Record{.data = "\x02", .offset = 1}))
      << "no check";
  EXPECT_EQ(house.sent(), "write 6 V 000A DE 00 C1 00 00 01; write 1 V 0010 02; write 1 V 0000 FF");
  EXPECT_EQ(house.spent(), 103) << "without polls";
  ModuleHouse refused({"status=7@3"});
  EXPECT_EQ(refused.write("000001", "\x02"), 7);
  EXPECT_EQ(refused.spent(), 3) << "the pause comes behind the trigger";
  EXPECT_EQ(house.read("090500").result, 0);
  house.restart();
  EXPECT_EQ(house.outcome(house.write("000001", bytes({9, 1, 9, 2, 9, 3, 9, 4}))),
            "0: write 6 V 000A DE 01 C8 00 00 01; write 8 V 0010 09 EE 09 DD 09 BB 09 77; write 1 V 0000 FF");
}

/// Modules asked one after the other through one object. What it knows of one does not pass to the next, but
/// to the controller's own.
TEST(ModuleTest, Identities) {
  const char* const absent = nullptr;
  const Record known{.offset = 2, .model = "MT007/500VA", .cpu = 16, .firmware = "0102"};
  const Record silent{.offset = 2, .model = "mine", .cpu = 48, .firmware = "1.0"};
  const struct {
    const char *number, *told;  ///< the name that the module tells
    std::string given;
    Record after;  ///< but for the data; the offset was 0
  } rows[] = {
      {"090501", "MT007/500VA", "", known},
      {"000001", absent, "kept", {.offset = 2, .model = "kept"}},
      {"090502", "X1", "", {.offset = 1}},
      {"000001", absent, "", {.offset = 1}},
      {"090503", "MT007/500VA", "MT00", known},
      {"010100", "X1", "", {.offset = 1}},
      {"090504", "MT007/500VA+", "", {.offset = 2, .model = "MT007/500VA+", .cpu = 16, .firmware = "0102"}},
      {"090505", "MT007/500VA", "MT001", {.offset = 2, .model = "MT001", .cpu = 16, .firmware = "0102"}},
      {"080999", absent, "mine", {.result = 255, .model = "mine"}},
      {"090506", "  MT012  X ", "", {.offset = 2, .model = "MT012  X", .cpu = 16, .firmware = "0102"}},
      {"090507", "MT036", "nonsense", {.offset = 1}},
      {"090509", "", "", {.offset = 2, .model = "", .cpu = 16, .firmware = "0102"}},
      {"090510", "X1", "01|MT", {.offset = 2, .model = "01|MT", .cpu = 16, .firmware = "0102"}},
      {"010101", "X1", "MT037xyz", {.offset = 2, .model = "MT037xyz"}},
      {"010102", "X1", "MT036", {.offset = 1, .model = "MT036"}},
      {"090249", "X1", "mine", {.offset = 1}},
      {"090250", "X1", "mine", silent},
      {"090270", "X1", "mine", silent},
      {"090271", "X1", "mine", {.offset = 1}},
  };
  std::vector<simulator::SimulatedModule> modules{moduleOf("000001", "")};
  for (const auto& row : rows) {
    if (row.told != absent) modules.push_back(moduleOf(row.number, row.told));
  }
  ModuleHouse house(modules);
  const Bytes twos(8, '\x02');
  const Bytes masks = "\x02\xDD\x02\xDD\x02\xDD\x02\xDD";
  EXPECT_EQ(house.serial.ConvertTXData("120100", twos), twos) << "no model is known at first";
  for (const auto& row : rows) {
    SCOPED_TRACE(row.number + (" " + row.given));
    Record record = house.read(row.number, {.model = row.given});
    record.data.clear();
    EXPECT_EQ(record, row.after);
    const bool isKnown = row.after.offset == 2;
    EXPECT_EQ(house.serial.ConvertTXData("120100", twos), isKnown ? masks : twos);
    EXPECT_EQ(house.serial.ConvertRXData("120100", masks), isKnown ? twos : masks);
  }
}

TEST(ModuleTest, OffsetsThatDoNotFit) {
  EXPECT_EQ(ModuleHouse().read("090500", {.offset = 255}).result, 99)
      << "a known model counts one piece more";
  EXPECT_EQ(ModuleHouse().read("060001", {.offset = 254}), (Record{.data = Bytes(32, '\0'), .offset = 255}))
      << "the code set last, as the third offset does not fit";
}

TEST(ModuleTest, VersionRequestsAtOffset2) {
  const struct {
    const char *number, *fault;
    Byte offset;
    int result;
    std::size_t size, versions;  ///< of the data; readings of a version
    const char* firmware;
  } rows[] = {{"950010", "code=1@9", 2, 0, 20, 1, "0104"}, {"951500", "code=1@9", 1, 0, 32, 1, "0109"},
              {"100100", "code=1@9", 1, 0, 22, 0, "0301"}, {"950010", "stuck@2", 2, 0, 20, 0, ""},
              {"950010", "code=128@2", 2, 128, 0, 0, ""},  {"950010", "status=7@10", 2, 7, 0, 1, ""}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.number) + " " + row.fault);
    ModuleHouse house({row.fault});
    const Record record = house.read(row.number, {.data = "old", .offset = row.offset});
    EXPECT_EQ(record.result, row.result);
    EXPECT_EQ(record.data.size(), row.size);
    EXPECT_EQ(house.countOf("read  2 V 0018"), row.versions);
    EXPECT_EQ(record.firmware, row.firmware);
  }
}

TEST(ModuleTest, MasksAtOffset1) {
  const Bytes pairs = bytes({5, 4, 6, 3, 7, 2, 8, 1});
  const std::pair<const char*, Bytes> rows[] = {
      {"090500", pairs + bytes({0, 1, 2, 3, 4, 5, 6, 7})},
      {"100100", bytes({5, 1, 6, 2, 7, 3, 8, 4, 0, 1, 2, 3, 4, 5, 6, 7, 17, 18, 19, 20, 21, 22})}};
  ModuleHouse house;
  for (const auto& [number, data] : rows) EXPECT_EQ(house.read(number).data, data) << number;
  EXPECT_EQ(house.write("090500", pairs + bytes({12, 11, 10, 9, 8, 7, 6, 5})), 0);
  EXPECT_EQ(house.countOf("write 16 V 0010 05 77 06 BB 07 DD 08 EE FF 7F 3F 1F 0F 07 03 01"), 1U);
  EXPECT_EQ(house.countOf("write 1 V 0010 04"), 1U) << "the record is completed";
  EXPECT_EQ(house.write("090500", pairs + bytes({13, 0, 0, 0, 0, 0, 0, 0})), 105);
  EXPECT_EQ(house.write("090100", bytes({9, 9, 0, 1, 2, 3, 4, 5, 6, 7}) + Bytes(7, '\x0F'), 1), 0);
  EXPECT_EQ(house.countOf("write 16 V 0010 09 09 10 08 04 02 00 01 03 07 0F 0F 0F 0F 0F 0F"), 1U);
  EXPECT_EQ(house.write("090100", Bytes(17, '\x0F'), 0), 0) << "no masks at another offset";

  const Bytes wrong = bytes({9, 9, 16, 8, 4, 2, 0, 1, 3, 5});
  const Record record = ModuleHouse("090100", "X1", wrong, 1).read("090100", {.offset = 1});
  EXPECT_EQ(record.result, 105) << "5 is no mask";
  EXPECT_EQ(record.data, wrong) << "what was read stays";
}

TEST(ModuleTest, LongRecordIsRead) {
  const struct {
    int length;
    std::size_t size, blocks, shortBlocks;  ///< blocks read, and where they have 7 bytes
  } rows[] = {{0, 0, 1, 1},   {1, 1, 1, 1},     {7, 7, 1, 1},     {16, 16, 1, 3},
              {17, 17, 2, 3}, {128, 128, 8, 8}, {129, 128, 8, 8}, {255, 128, 8, 8}};
  for (const auto& row : rows) {
    const Bytes whole = bytes({row.length}) + counted(140);
    ModuleHouse house("980500", "DSP", whole);
    SCOPED_TRACE(row.length);
    const Record read = house.read("980500", {.data = "old"});
    EXPECT_EQ(read, (Record{.data = whole.substr(0, row.size), .offset = 1}));
    EXPECT_EQ(house.requests.size(), 9 + row.blocks);
    house.reopen({"short=20@10-"});
    EXPECT_EQ(house.read("980500").result, 0);
    EXPECT_EQ(house.requests.size(), 9 + row.shortBlocks);
  }
  EXPECT_EQ(ModuleHouse({"stuck@2"}).read("980500").result, 99);
}

TEST(ModuleTest, LongRecordIsWritten) {
  ModuleHouse house;
  Bytes numbers, masks;
  for (int i = 0; i < 6; ++i) {
    numbers += bytes({200 + i, 1, 220, 1 + i % 4});
    masks += bytes({200 + i, 0xEE, 220, std::array{0xEE, 0xDD, 0xBB, 0x77}[i % 4]});
  }
  const Bytes data = "front..." + numbers + counted(80);
  EXPECT_EQ(house.write("700100", Record{.data = data}), (Record{.data = data, .offset = 1}));
  EXPECT_EQ(house.memoryAt(0, 26, 128, link::Area::highBlock),
            "front..." + masks + counted(80) + Bytes(16, '\0'));
  EXPECT_EQ(house.requests.size(), 5U + 7 + 3) << "identification, blocks, exchange";
  EXPECT_EQ(house.last(3), "write 6 V 000A DE 00 9F 46 01 00; write 1 V 0000 FF; read  1 V 0000");
  EXPECT_EQ(house.write("700100", Bytes(112, '\x05')), 99) << "5 is no selection";
  EXPECT_EQ(ModuleHouse({"status=7@12"}).write("700100", data), 7) << "the last block";
  EXPECT_EQ(ModuleHouse({"stuck@2"}).write("700100", data), 100);
  house.restart();
  EXPECT_EQ(house.write("706000", data), 0);
  EXPECT_EQ(house.headers(), "00 4F, 00 D0, 01 D0, 02 D0, 03 D0, 04 D0, 05 D0, 06 D0") << "in pieces";
}

TEST(ModuleTest, SelectionsOnTheWire) {
  ModuleHouse seven("300000", "MT001");
  EXPECT_EQ(seven.write("300000", Bytes(32, '\x02')), 0);
  EXPECT_EQ(seven.countOf("write 16 V 0010 02 DD 02 DD 02 DD 02 DD 02 DD 02 DD 02 DD 02 DD"), 1U);
  EXPECT_EQ(seven.write("300000", Bytes(32, '\x02'), 1), 0) << "as it is from offset 2 on";
  EXPECT_EQ(seven.countOf("write 16 V 0010 02 02 02 02 02 02 02 02 02 02 02 02 02 02 02 02"), 3U);
  ModuleHouse four("120100", "MT001");
  EXPECT_EQ(four.write("120100", bytes({255, 0x11, 255, 0x22, 255, 3, 255, 4})), 0);
  EXPECT_EQ(four.countOf("write 8 V 0010 FF EE FF DD FF BB FF 77"), 1U);
  four.restart();
  EXPECT_EQ(four.write("120100", bytes({9, 1, 9, 5, 9, 1, 9, 1})), 99) << "not 112: no field is checked";
  EXPECT_EQ(four.headers(), "00 0F") << "the identification alone";
}

/// A dead link must not make polling a matter of processor time, and hosts stay alive: their messages are
/// dispatched in each transaction, behind each poll and at both ends of each pause.
TEST(ModuleTest, PollingLeavesTimeToOthers) {
  ModuleHouse house({"stuck@2"});
  const int before = house.host.yields();
  EXPECT_EQ(house.read("090500").result, 99);
  EXPECT_EQ(house.requests.size(), 507U);
  EXPECT_EQ(house.host.yields() - before, 507 + 502 + 3 * 2) << "requests, polls, three pauses";
  ModuleHouse stuck({"stuck@*"});
  stuck.host.transferTime = std::chrono::milliseconds(0);
  EXPECT_EQ(stuck.read("090255").result, 107);
  EXPECT_EQ(stuck.countOf("read  1 V 0000"), 501U) << "one each millisecond";
  ModuleHouse dead({"disconnect@3"});
  EXPECT_EQ(dead.read("090255").result, 107);
  EXPECT_EQ(dead.spent(), 702);
}

}  // namespace
}  // namespace velk::test
