#include "modules/module_house.h"

namespace velk::test {
namespace {

using Requests = std::vector<std::string>;

/// The last requests of a house, as many as are expected.
Requests lastOf(const ModuleHouse& house, std::size_t count) {
  const auto skipped =
      static_cast<std::ptrdiff_t>(house.requests.size() - std::min(count, house.requests.size()));
  return {house.requests.begin() + skipped, house.requests.end()};
}

TEST(ModuleTest, SerialNumbersHaveSixCharacters) {
  ModuleHouse house;
  for (const char* const serieNr : {"", "09025", "0902555"}) {
    Record record{.data = "old", .offset = 3, .model = "m"};
    const Record before = record;
    EXPECT_EQ(house.read(serieNr, record), 106);
    EXPECT_EQ(house.write(serieNr, record), 106);
    EXPECT_EQ(record, before);
  }
  EXPECT_TRUE(house.requests.empty());
}

TEST(ModuleTest, ReadsPieceByPiece) {
  ModuleHouse house;
  Record record{.data = "old"};
  EXPECT_EQ(house.read("060001", record), 0);
  EXPECT_EQ(record.offset, 5);
  EXPECT_EQ(record.data, bytes({10, 1, 20}) + Bytes(13, '\0') + bytes({11, 2, 21}) + Bytes(55, '\0'));
  EXPECT_EQ(house.asked,
            (Requests{"module 060001: identification", "module 060001: read piece 0, 16 bytes",
                      "module 060001: read piece 1, 16 bytes", "module 060001: read piece 2, 16 bytes",
                      "module 060001: read piece 3, 16 bytes", "module 060001: read piece 4, 10 bytes"}));
  EXPECT_EQ(lastOf(house, 5),
            (Requests{"write 16 V 000A DE 04 0A 06 00 01 20 20 20 20 20 20 20 20 20 20", "write 1 V 0000 FF",
                      "read  1 V 0000", "read  1 V 000A", "read  10 V 0010"}));
  EXPECT_EQ(house.spent(), 205 + 5 * 105);
}

TEST(ModuleTest, ReadFlagOfKnownModelsAndOneSeries) {
  const std::pair<const char*, const char*> rows[] = {
      {"090500", "DE 01 50 09 05 00"}, {"090255", "DE 01 50 09 02 37"}, {"830300", "DE 00 43 53 03 00"},
      {"830100", "DE 00 03 53 01 00"}, {"080100", "DE 00 06 08 01 00"}, {"990000", "DE 00 04 63 00 00"},
  };
  for (const auto& [serieNr, header] : rows) {
    ModuleHouse house;
    Record record;
    EXPECT_EQ(house.read(serieNr, record), 0);
    EXPECT_EQ(lastOf(house, 5).at(0).substr(16, 17), header);
  }
}

TEST(ModuleTest, WritesPieceByPieceWithPauses) {
  ModuleHouse house;
  Bytes data;
  for (int i = 0; i < 20; ++i) data += character(i);
  Record record{.data = data, .offset = 3};
  EXPECT_EQ(house.write("950010", record), 0);
  EXPECT_EQ(record.offset, 5);
  EXPECT_EQ(record.data, data);
  EXPECT_EQ(lastOf(house, 8),
            (Requests{"write 6 V 000A DE 03 D0 5F 00 0A",
                      "write 16 V 0010 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F", "write 1 V 0000 FF",
                      "read  1 V 0000", "write 6 V 000A DE 04 C4 5F 00 0A", "write 4 V 0010 10 11 12 13",
                      "write 1 V 0000 FF", "read  1 V 0000"}));
  EXPECT_EQ(house.spent(), 205 + 2 * (4 + 100 + 800) + 2000) << "this series stores slowly";

  house.restart();
  EXPECT_EQ(house.write("110100", Bytes(70, 'x')), 0);
  EXPECT_EQ(house.asked.back(), "module 110100: write piece 4, 6 bytes");
  EXPECT_EQ(house.spent(), 205 + 5 * 904 + 4 * 100);
}

TEST(ModuleTest, TheControllersOwnModule) {
  ModuleHouse house;
  Record record{.data = "\x02", .model = "kept", .cpu = 9, .firmware = "kept"};
  EXPECT_EQ(house.write("000001", record), 0) << "without a check";
  EXPECT_EQ(house.requests,
            (Requests{"write 6 V 000A DE 00 C1 00 00 01", "write 1 V 0010 02", "write 1 V 0000 FF"}));
  EXPECT_EQ(house.spent(), 103) << "and without polls";
  EXPECT_EQ(record, (Record{.data = "\x02", .offset = 1, .model = "kept", .cpu = 9, .firmware = "kept"}));
  record.offset = 0;
  EXPECT_EQ(house.read("000001", record), 0);
  EXPECT_EQ(record, (Record{.data = "\x02", .offset = 1, .model = "kept", .cpu = 9, .firmware = "kept"}));
  // What is known of the module before it still counts.
  Record known;
  EXPECT_EQ(house.read("090500", known), 0);
  house.restart();
  record.offset = 0;
  EXPECT_EQ(house.serial.Module("W", "000001", "abcdefgh", record.offset), 99) << "letters are no selections";
  EXPECT_EQ(record.offset, 1);
  record.offset = 0;
  EXPECT_EQ(house.serial.Module("W", "000001", bytes({9, 1, 9, 2, 9, 3, 9, 4}), record.offset), 0);
  EXPECT_EQ(house.requests.at(0), "write 6 V 000A DE 01 C8 00 00 01");
  EXPECT_EQ(house.requests.at(1), "write 8 V 0010 09 EE 09 DD 09 BB 09 77");
}

TEST(ModuleTest, TheSilentSeries) {
  ModuleHouse house;
  Record record{.model = "mine", .cpu = 1, .firmware = "x"};
  EXPECT_EQ(house.read("090255", record), 0);
  EXPECT_EQ(record.data, bytes({5, 1, 6, 2, 7, 3, 8, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
  record.data.clear();
  EXPECT_EQ(record, (Record{.offset = 2, .model = "mine", .cpu = 48, .firmware = "1.0"}));
  for (const char* const serieNr : {"090250", "090260", "090270", "090249", "090271"}) {
    Record absent{.data = "old", .offset = 4, .model = "mine", .cpu = 1, .firmware = "x"};
    const Record before = absent;
    EXPECT_EQ(house.read(serieNr, absent), 255) << "its version reading fails first";
    EXPECT_EQ(absent, before);
  }
}

TEST(ModuleTest, EachStepOfAReadCanFail) {
  // The identification takes five transactions, and so does the piece. Polls go on through a bad status.
  const int results[] = {7, 7, 0, 0, 7, 7, 7, 0, 0, 7};
  int step = 0;
  for (const int result : results) {
    ++step;
    ModuleHouse house({"status=7@" + std::to_string(step)});
    Record record{.data = "old"};
    EXPECT_EQ(house.read("090500", record), result) << step;
    EXPECT_EQ(record.data.size(), step <= 5 && result != 0 ? 3U : result != 0 ? 0U : 16U) << step;
  }
}

TEST(ModuleTest, EachStepOfAWriteCanFail) {
  const int results[] = {7, 7, 7, 0, 7, 7, 7, 0};
  for (int step = 1; step <= 8; ++step) {
    ModuleHouse house({"status=7@" + std::to_string(5 + step)});
    Record record{.data = Bytes(20, 'x')};
    EXPECT_EQ(house.write("950010", record), results[step - 1]) << step;
    EXPECT_EQ(record.offset, results[step - 1] == 0 ? 2 : step <= 4 ? 0 : 1) << step;
  }
  ModuleHouse house({"stuck@3"});
  Record record{.data = Bytes(20, 'x')};
  EXPECT_EQ(house.write("950010", record), 100);
  EXPECT_EQ(record.offset, 1) << "the second piece";
  EXPECT_EQ(house.spent(), 205 + 904 + 2000 + 3 + 100 + 1000 + 800);
}

TEST(ModuleTest, ReplyCodesEndARead) {
  for (const auto& [code, result] :
       std::vector<std::pair<int, int>>{{127, 127}, {128, 128}, {255, 255}, {1, 100}, {254, 100}}) {
    ModuleHouse house({"code=" + std::to_string(code) + "@3"});
    Record record;
    EXPECT_EQ(house.read("060001", record), result);
    EXPECT_EQ(record.data.size(), 16U) << "what was read stays";
    EXPECT_EQ(record.offset, 1);
  }
  ModuleHouse late({"busy=490@2", "pending=490@2"});
  Record record;
  EXPECT_EQ(late.read("090500", record), 0);
  ModuleHouse ignored({"code=127@2"});
  EXPECT_EQ(ignored.write("090500", bytes({5, 1, 6, 2, 7, 3, 8, 4, 0, 0, 0, 0, 0, 0, 0, 0})), 0)
      << "a write does not ask for the code";
}

TEST(ModuleTest, APieceWhoseTriggerStaysSetIsSkipped) {
  const struct {
    const char* fault;
    int result;
    std::size_t size;
  } rows[] = {{"stuck@3", 0, 58},
              {"stuck@2", 0, 58},
              {"stuck@6", 0, 64},
              {"stuck@2-", 99, 0},
              {"busy=600@2-4", 0, 26}};
  for (const auto& row : rows) {
    ModuleHouse house({row.fault});
    Record record{.data = "old"};
    EXPECT_EQ(house.read("060001", record), row.result) << row.fault;
    EXPECT_EQ(record.data.size(), row.size) << row.fault;
    EXPECT_EQ(record.offset, 5) << row.fault;
  }
}

TEST(ModuleTest, OffsetsThatDoNotFit) {
  Record record{.offset = 255};
  EXPECT_EQ(ModuleHouse().read("090500", record), 99) << "a known model counts one piece more";
  record = {.offset = 254};
  EXPECT_EQ(ModuleHouse().read("060001", record), 0) << "the code set last";
  EXPECT_EQ(record.offset, 255);
  EXPECT_EQ(record.data.size(), 32U);
}

TEST(ModuleTest, VersionRequestsAtOffset2) {
  for (const auto& [serieNr, firmware] : std::vector<std::pair<const char*, const char*>>{
           {"950010", "0104"}, {"951500", "0109"}, {"100100", "0301"}}) {
    ModuleHouse house;
    const bool isKnown = std::string(serieNr) != "950010";
    Record record{.offset = static_cast<Byte>(isKnown ? 1 : 2)};
    EXPECT_EQ(house.read(serieNr, record), 0);
    EXPECT_EQ(house.asked.at(1), std::string("module ") + serieNr + ": version, offset 2");
    EXPECT_EQ(house.requests.at(5).substr(16, 8), "DE 02 0A");
    EXPECT_EQ(house.countOf("read  2 V 0018"), std::string(serieNr) == "100100" ? 0U : 1U);
    EXPECT_EQ(record.firmware, firmware);
    EXPECT_EQ(house.asked.at(2).substr(15), "read piece 2, 16 bytes");
  }
  Record record{.offset = 2};
  ModuleHouse unanswered({"stuck@2"});
  EXPECT_EQ(unanswered.read("950010", record), 0) << "the record does not depend on it";
  EXPECT_EQ(record.data.size(), 20U);
  EXPECT_EQ(record.firmware, "");
  record.offset = 2;
  EXPECT_EQ(ModuleHouse({"code=128@2"}).read("950010", record), 128);
  record.offset = 2;
  EXPECT_EQ(ModuleHouse({"status=7@10"}).read("950010", record), 7) << "the two bytes";
}

TEST(ModuleTest, MasksAtOffset1) {
  const Bytes codes = bytes({0, 1, 2, 3, 4, 5, 6, 7});
  Record record{.offset = 1};
  ModuleHouse house;
  EXPECT_EQ(house.read("090100", record), 0);
  EXPECT_EQ(record.data, bytes({5, 0}) + codes);
  record = {};
  EXPECT_EQ(house.read("090500", record), 0);
  EXPECT_EQ(record.data, bytes({5, 4, 6, 3, 7, 2, 8, 1}) + codes);
  record = {};
  EXPECT_EQ(house.read("100100", record), 0);
  EXPECT_EQ(record.data, bytes({5, 1, 6, 2, 7, 3, 8, 4}) + codes + bytes({17, 18, 19, 20, 21, 22}));

  house.restart();
  EXPECT_EQ(house.write("090500", bytes({5, 4, 6, 3, 7, 2, 8, 1, 12, 11, 10, 9, 8, 7, 6, 5})), 0);
  EXPECT_EQ(house.countOf("write 16 V 0010 05 77 06 BB 07 DD 08 EE FF 7F 3F 1F 0F 07 03 01"), 1U);
  EXPECT_EQ(house.countOf("write 1 V 0010 04"), 1U) << "the record is completed";
  EXPECT_EQ(house.write("090500", bytes({5, 4, 6, 3, 7, 2, 8, 1, 13, 0, 0, 0, 0, 0, 0, 0})), 105);
  EXPECT_EQ(house.write("090500", bytes({5, 5, 6, 3, 7, 2, 8, 1, 0, 0, 0, 0, 0, 0, 0, 0})), 99)
      << "no selection, found when it is to become a mask";

  EXPECT_EQ(house.write("090100", bytes({9, 9}) + codes + Bytes(7, '\x09'), 1), 0);
  record = {.offset = 1};
  EXPECT_EQ(house.read("090100", record), 0);
  EXPECT_EQ(record.data, bytes({9, 9}) + codes);
  EXPECT_EQ(house.write("090100", Bytes(17, '\x0F'), 0), 0) << "no masks at another offset";
}

TEST(ModuleTest, TypeFourHasNoFieldsToCheck) {
  for (const int selection : {5, 15}) {
    ModuleHouse house;
    Record record{.data = bytes({9, 1, 9, selection, 9, 1, 9, 1}), .model = "MT001"};
    EXPECT_EQ(house.write("120100", record), 99) << "not 112: no mask for " << selection;
    EXPECT_EQ(house.countOf("write 1 V 0000 FF"), 1U) << "the identification alone";
    record = {.data = bytes({255, 0x11, 255, 0x22, 255, 0x33, 255, 0x44}), .model = "MT001"};
    EXPECT_EQ(house.write("120100", record), 0);
    EXPECT_EQ(house.countOf("write 8 V 0010 FF EE FF DD FF BB FF 77"), 1U);
  }
}

TEST(ModuleTest, AByteThatIsNoMask) {
  ModuleHouse house;
  Record known{.data = bytes({5, 1, 6, 2, 7, 3, 8, 4}) + Bytes(8, '\0'), .model = "MT001"};
  ASSERT_EQ(house.write("090100", known), 0);
  // Without its model, selections of that record stand where masks should.
  Record record{.offset = 1};
  EXPECT_EQ(house.read("090100", record), 105);
  EXPECT_EQ(record.data, bytes({5, 0xEE, 6, 0xDD, 7, 0xBB, 8, 0x77, 16, 16})) << "what was read stays";
}

TEST(ModuleTest, LongRecordIsRead) {
  ModuleHouse house;
  Record record{.data = "old"};
  EXPECT_EQ(house.read("980500", record), 0);
  EXPECT_EQ(record.data.size(), 40U);
  EXPECT_EQ(record.data.substr(0, 12), "(long record");
  EXPECT_EQ(record.offset, 1);
  EXPECT_EQ(lastOf(house, 7), (Requests{"write 16 V 000A DE 00 1F 62 05 00 20 20 20 20 20 20 20 20 20 20",
                                        "write 1 V 0000 FF", "read  1 V 0000", "read  1 V 000A",
                                        "read  16 H+ 001A", "read  16 H+ 101A", "read  16 H+ 201A"}));
  const std::pair<int, std::size_t> lengths[] = {{0, 0}, {1, 1}, {16, 16}, {17, 17}, {128, 128}, {255, 128}};
  for (const auto& [length, size] : lengths) {
    ASSERT_EQ(house.write("980500", bytes({length, 1, 2, 3})), 0);
    record = {};
    house.restart();
    EXPECT_EQ(house.read("980500", record), 0);
    EXPECT_EQ(record.data.size(), size);
    EXPECT_EQ(house.requests.size(), 9 + std::max<std::size_t>((size + 15) / 16, 1));
  }
  ModuleHouse stuck({"stuck@2"});
  EXPECT_EQ(stuck.read("980500", record), 99);
  EXPECT_EQ(record.data, "");
}

TEST(ModuleTest, LongRecordIsWritten) {
  ModuleHouse house;
  const Bytes data = Bytes(8, 'x') + Bytes(24, '\x02') + Bytes(80, 'y');
  Record record{.data = data};
  EXPECT_EQ(house.write("700100", record), 0);
  EXPECT_EQ(record.offset, 1);
  Requests blocks;
  for (const auto& request : house.requests) {
    if (request.substr(0, 10) == "write 16 H") blocks.push_back(request.substr(12, 4));
  }
  EXPECT_EQ(blocks, (Requests{"001A", "101A", "201A", "301A", "401A", "501A", "601A"}));
  EXPECT_EQ(lastOf(house, 3),
            (Requests{"write 6 V 000A DE 00 9F 46 01 00", "write 1 V 0000 FF", "read  1 V 0000"}));
  record = {};
  EXPECT_EQ(house.read("700100", record), 0);
  EXPECT_EQ(record.data, "xxxxxxxx\x02\xDD\x02\xDD\x02\xDD\x02\xDD\x02\xDD\x02\xDD");

  house.restart();
  EXPECT_EQ(house.write("706000", data), 0);
  EXPECT_EQ(house.asked.size(), 1 + 7U) << "in pieces";
  record = {};
  EXPECT_EQ(house.read("706000", record), 0);
  EXPECT_EQ(record.data, data.substr(0, 32));
  EXPECT_EQ(house.write("700100", Bytes(112, '\x05')), 99) << "5 is no selection";
  EXPECT_EQ(ModuleHouse({"status=7@12"}).write("700100", data), 7) << "the last block";
  EXPECT_EQ(ModuleHouse({"stuck@2"}).write("700100", data), 100);
}

TEST(ModuleTest, TypeSevenIsSentAsItIsFromOffset2On) {
  Bytes data;
  for (int i = 0; i < 32; ++i) data += character(i % 4 + 1);
  ModuleHouse house;
  Record record{.data = data};
  EXPECT_EQ(house.write("300000", record), 0);
  EXPECT_EQ(house.countOf("write 16 V 0010 01 DD 03 77 01 DD 03 77 01 DD 03 77 01 DD 03 77"), 1U);
  record = {};
  EXPECT_EQ(house.read("300000", record), 0);
  EXPECT_EQ(record.data, data);
  house.restart();
  EXPECT_EQ(house.write("300000", data, 1), 0);
  EXPECT_EQ(house.countOf("write 16 V 0010 01 02 03 04 01 02 03 04 01 02 03 04 01 02 03 04"), 2U);
}

TEST(ModuleTest, WhatIsWrittenIsReadBack) {
  const struct {
    const char* serieNr;
    std::size_t size;
    Byte value;
  } rows[] = {{"005000", 1, 9},  {"030010", 2, 9}, {"040100", 8, 200}, {"045500", 8, 200}, {"060001", 74, 3},
              {"070001", 11, 9}, {"080100", 6, 9}, {"080300", 16, 9},  {"110100", 70, 9},  {"120100", 8, 9},
              {"210001", 24, 9}, {"270100", 7, 4}, {"750000", 29, 3},  {"830100", 3, 9},   {"830300", 3, 9},
              {"880000", 22, 9}, {"930100", 3, 9}, {"950010", 20, 9},  {"951500", 32, 4},  {"980050", 16, 9},
              {"990000", 4, 9}};
  for (const auto& row : rows) {
    ModuleHouse house;
    const Bytes data(row.size, character(row.value));
    EXPECT_EQ(house.write(row.serieNr, data), 0) << row.serieNr;
    Record record;
    EXPECT_EQ(house.read(row.serieNr, record), 0) << row.serieNr;
    // Type 75 is written without masks but read with them.
    Bytes expected = data;
    if (std::string(row.serieNr) == "750000") {
      for (const std::size_t position : {2U, 4U, 6U, 8U}) expected[position - 1] = '\x0C';
    }
    EXPECT_EQ(record.data, expected) << row.serieNr;
  }
}

TEST(ModuleTest, TheHousesModulesAreWritableAsTheyAreRead) {
  for (const char* const serieNr :
       {"000001", "005000", "030010", "040100", "045500", "060001", "070001", "080100", "080300",
        "090255", "090500", "100100", "110100", "120100", "210001", "270100", "300000", "830100",
        "830300", "880000", "930100", "950010", "951500", "980050", "990000"}) {
    ModuleHouse house;
    Record first;
    ASSERT_EQ(house.read(serieNr, first), 0) << serieNr;
    EXPECT_EQ(house.write(serieNr, first.data), 0) << serieNr;
    Record again;
    EXPECT_EQ(house.read(serieNr, again), 0) << serieNr;
    EXPECT_EQ(again, first) << serieNr;
  }
}

TEST(ModuleTest, WorksOverEveryLink) {
  for (const LinkKind kind : allLinks) {
    ModuleHouse house({}, kind);
    const Bytes data = bytes({5, 4, 6, 3, 7, 2, 8, 1, 12, 11, 10, 9, 8, 7, 6, 5});
    EXPECT_EQ(house.write("090500", data), 0) << nameOf(kind);
    Record record;
    EXPECT_EQ(house.read("090500", record), 0) << nameOf(kind);
    EXPECT_EQ(record.data, data) << nameOf(kind);
  }
}

/// A link that fails at once must not make polling a matter of processor time: the requests stay few.
TEST(ModuleTest, ADeadLinkEndsInTime) {
  for (const char* const fault : {"disconnect@3", "disconnect@4"}) {
    ModuleHouse house({fault});
    Record record;
    EXPECT_NE(house.read("090255", record), 0) << fault;
    EXPECT_LE(house.spent(), 1300) << fault;
  }
  ModuleHouse stuck({"stuck@*"});
  stuck.host.transferTime = std::chrono::milliseconds(0);
  Record record;
  EXPECT_EQ(stuck.read("090255", record), 107);
  EXPECT_LE(stuck.countOf("read  1 V 0000"), 501U);
}

}  // namespace
}  // namespace velk::test
