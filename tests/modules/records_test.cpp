#include "modules/records.h"

#include <gtest/gtest.h>

#include "link/memory.h"
#include "support/bytes.h"

namespace velk::modules {
namespace {

using test::bytes;
using Lengths = std::vector<std::size_t>;

Byte check(std::string_view serieNr, Bytes data, Byte offset = 0, bool known = false) {
  try {
    checkWrite({.serieNr = serieNr, .known = known}, offset, data);
    return 0;
  } catch (const link::Stop& stop) {
    return stop.result;
  }
}

TEST(RecordsTest, ReadLengths) {
  const struct {
    const char* serieNr;
    int length;
    int known;  ///< for a known model
    Byte offset = 0;
  } rows[] = {
      {"000001", 1, 1},      {"009999", 1, 1},      {"010100", 10, 16},  {"080000", 6, 6},
      {"080249", 6, 6},      {"080250", 16, 16},    {"800000", 16, 16},  {"090100", 10, 16, 1},
      {"030001", 2, 2},      {"120001", 8, 8},      {"060001", 74, 74},  {"070001", 11, 11},
      {"220000", 0, 0},      {"230000", 32, 32},    {"840000", 11, 11},  {"639999", 32, 32},
      {"100000", 22, 22, 2}, {"110000", 70, 70},    {"240000", 70, 70},  {"210000", 24, 24},
      {"260000", 24, 24},    {"270000", 7, 7},      {"290000", 7, 7},    {"704999", 20, 20},
      {"705000", 32, 32},    {"719999", 32, 32},    {"720000", 0, 0},    {"750000", 29, 29},
      {"780000", 29, 29},    {"790000", 0, 0},      {"830199", 3, 3, 1}, {"830200", 3, 3, 0},
      {"830200", 5, 5, 1},   {"839999", 5, 5, 200}, {"880000", 22, 22},  {"910000", 0, 0, 0},
      {"910000", 11, 11, 1}, {"930000", 3, 3},      {"950999", 20, 20},  {"951000", 32, 32},
      {"960000", 32, 32},    {"980000", 16, 16},    {"990000", 4, 4},    {"900000", 0, 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(readLength({row.serieNr, false}, row.offset), row.length) << row.serieNr;
    EXPECT_EQ(readLength({row.serieNr, true}, row.offset), row.known) << row.serieNr;
  }
}

TEST(RecordsTest, WriteLengths) {
  const std::pair<const char*, Lengths> rows[] = {
      {"000005", {1, 6}},   {"080249", {1, 6}},     {"080250", {1, 16}},  {"090100", {16, 17}},
      {"030001", {2}},      {"120001", {8, 9, 10}}, {"060001", {74}},     {"070001", {11, 32}},
      {"300000", {11, 32}}, {"100000", {22}},       {"110000", {70}},     {"240000", {70}},
      {"270000", {7}},      {"700000", {112}},      {"706000", {112}},    {"710000", {112}},
      {"750000", {29}},     {"830100", {3}},        {"830300", {3}},      {"880000", {22}},
      {"910000", {11}},     {"930000", {3}},        {"950000", {20, 32}}, {"960000", {20, 32}},
      {"980000", {4, 16}},  {"990000", {4}},
  };
  for (const auto& [serieNr, lengths] : rows) {
    for (const Byte offset : std::vector<Byte>{0, 1}) {
      Lengths accepted;
      for (std::size_t size = 0; size <= 130; ++size) {
        const Byte result = check(serieNr, Bytes(size, '\0'), offset);
        if (result == 0) accepted.push_back(size);
        EXPECT_TRUE(result == 0 || result == 104) << serieNr;
      }
      EXPECT_EQ(accepted, lengths) << serieNr << " at " << int{offset};
    }
  }
  for (const char* const unchecked :
       {"210000", "260000", "290000", "760000", "780000", "900000", "220000", "-50000"}) {
    EXPECT_EQ(check(unchecked, ""), 0) << unchecked;
    EXPECT_EQ(check(unchecked, Bytes(99, '\xFF')), 0) << unchecked;
  }
}

TEST(RecordsTest, FieldsOfType0) {
  for (const int first : {1, 2, 100, 255}) EXPECT_EQ(check("000005", bytes({first})), 112) << first;
  for (const int first : {0, 3, 99}) EXPECT_EQ(check("000005", bytes({first})), 0) << first;
  for (const int second : {2, 100, 255}) {
    EXPECT_EQ(check("080100", bytes({5, second, 0, 0, 0, 0})), 112) << second;
    EXPECT_EQ(check("080300", bytes({5, second}) + Bytes(14, '\xFF')), 112) << second;
  }
  for (const int second : {0, 1, 3, 99}) {
    EXPECT_EQ(check("080300", bytes({5, second}) + Bytes(14, '\xFF')), 0) << second;
  }
}

TEST(RecordsTest, PairsOfTypes1And3) {
  const std::pair<Bytes, int> pairs[] = {{bytes({0, 0}), 0},    {bytes({3, 0}), 0},   {bytes({99, 99}), 0},
                                         {bytes({2, 0}), 112},  {bytes({0, 1}), 112}, {bytes({100, 1}), 112},
                                         {bytes({5, 100}), 112}};
  for (const auto& [pair, result] : pairs) {
    EXPECT_EQ(check("030001", pair), result);
    for (std::size_t place = 0; place < 8; place += 2) {
      EXPECT_EQ(check("090100", Bytes(17, '\0').replace(place, 2, pair)), result) << place;
    }
    EXPECT_EQ(check("090100", Bytes(17, '\0').replace(8, 2, pair)), 0) << "the fifth pair is free";
  }
  Bytes completed(16, '\0');
  checkWrite({"090100", false}, 0, completed);
  EXPECT_EQ(completed, Bytes(16, '\0') + '\x04');
}

TEST(RecordsTest, GroupsOfType5) {
  for (const std::size_t group : {0U, 16U, 32U, 48U}) {
    const auto with = [group](const Bytes& fields) {
      return check("060001", Bytes(74, '\0').replace(group, fields.size(), fields));
    };
    EXPECT_EQ(with(bytes({3, 3, 21})), 0);
    EXPECT_EQ(with(bytes({2, 0, 0})), 112);
    EXPECT_EQ(with(bytes({5, 100, 22})), 112);
    EXPECT_EQ(with(bytes({5, 4, 22})), 105);
    EXPECT_EQ(with(bytes({5, 3, 22})), 111);
  }
  EXPECT_EQ(check("060001", Bytes(64, '\0') + Bytes(10, '\xFF')), 0) << "four groups";
}

TEST(RecordsTest, OffsetOfType98AndSelections) {
  EXPECT_EQ(check("980000", Bytes(16, '\0'), 3), 0);
  EXPECT_EQ(check("980000", Bytes(16, '\0'), 4), 103);
  EXPECT_EQ(check("980000", Bytes(4, '\0'), 4), 0);
  EXPECT_EQ(check("980000", Bytes(5, '\0'), 4), 104);
  const Bytes record = Bytes(32, '\x04');
  for (const std::size_t position : {2U, 8U, 32U}) {
    Bytes bad = record;
    bad[position - 1] = '\x15';
    EXPECT_EQ(check("960000", bad, 1, true), 112) << position;
    EXPECT_EQ(check("960000", bad, 1, false), 0) << "no masks";
  }
  EXPECT_EQ(check("960000", record, 1, true), 0);
  EXPECT_EQ(check("300000", Bytes(32, '\x09'), 1, true), 112);
  EXPECT_EQ(check("300000", Bytes(32, '\x09'), 2, true), 0) << "sent as it is: nothing becomes a mask";
  EXPECT_EQ(check("080300", Bytes(16, '\x04'), 255), 0) << "no bound but that of type 98";
  for (const std::size_t size : {8U, 9U, 10U}) {
    EXPECT_EQ(check("120001", Bytes(size, '\xFF'), 1, true), 0) << "type 4 has a length and no fields";
  }
}

TEST(RecordsTest, LongRecords) {
  EXPECT_FALSE(readsLongRecord({"980099", false}));
  EXPECT_TRUE(readsLongRecord({"980100", false}));
  EXPECT_TRUE(readsLongRecord({"989999", true}));
  EXPECT_FALSE(readsLongRecord({"990000", false}));
  const struct {
    const char* serieNr;
    Byte offset;
    std::size_t size;
    bool isLong;
  } rows[] = {{"704999", 0, 112, true},  {"705000", 0, 112, false}, {"709999", 0, 112, false},
              {"710000", 2, 112, true},  {"700000", 1, 112, false}, {"700000", 0, 111, false},
              {"720000", 0, 112, false}, {"690000", 0, 112, false}};
  for (const auto& row : rows) {
    EXPECT_EQ(writesLongRecord({row.serieNr, false}, row.offset, row.size), row.isLong) << row.serieNr;
  }
}

}  // namespace
}  // namespace velk::modules
