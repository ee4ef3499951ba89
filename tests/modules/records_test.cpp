#include "modules/records.h"

#include <gtest/gtest.h>

#include "link/memory.h"
#include "modules/conversion.h"
#include "support/bytes.h"
#include "values/numbers.h"

namespace velk::modules {
namespace {

using test::bytes;
using Lengths = std::vector<std::size_t>;
using PositionList = std::vector<Byte>;

PositionList listed(Positions positions) {
  return {positions.begin(), positions.end()};
}

Byte check(std::string_view number, Bytes data, Byte offset = 0, bool known = false) {
  try {
    checkWrite({.serialNumber = number, .known = known}, offset, data);
    return 0;
  } catch (const link::Stop& stop) {
    return stop.result;
  }
}

/// The lengths that a write takes, up to 130; just 131 when it takes them all.
Lengths lengthsTaken(std::string_view number, Byte offset) {
  Lengths taken;
  for (std::size_t size = 0; size <= 130; ++size) {
    const Byte result = check(number, Bytes(size, '\0'), offset);
    if (result == 0) taken.push_back(size);
    EXPECT_TRUE(result == 0 || result == 104) << number << " refuses its length with " << int{result};
  }
  return taken.size() == 131 ? Lengths{131} : taken;
}

/// The type counts with the first two characters, the thresholds with the number at the start of the text.
TEST(RecordsTest, SerialNumbersThatAreNoNumbers) {
  const std::pair<const char*, Lengths> rows[] = {
      {"70abcd", {112}}, {"71abcd", {112}}, {"95abcd", {20, 32}}, {"96abcd", {20, 32}}};
  for (const auto& [number, written] : rows) {
    EXPECT_EQ(readLength({.serialNumber = number, .known = false}, 0), 20) << number;
    EXPECT_EQ(lengthsTaken(number, 0), written) << number;
  }
}

/// The whole range of serial numbers in runs of the same behaviour, each tried at both ends.
TEST(RecordsTest, LengthsAndFieldsOfAllSerialNumbers) {
  const Lengths any{131}, type0{1, 16}, type1{16, 17}, type4{8, 9, 10}, type7{11, 32};
  const PositionList none, at2{2}, at8{2, 4, 6, 8}, at38{38};
  const PositionList at16{2, 4, 6, 8, 10, 12, 14, 16}, at32{2, 4, 6, 8, 26, 28, 30, 32};
  const struct {
    int first;            ///< serial number; the run ends in front of the next
    int at0, at1, known;  ///< lengths read at these offsets, and of known models
    Lengths written;
    PositionList sent, received;  ///< fields of known models
    PositionList otherwise{};     ///< fields of others
  } runs[] = {
      // clang-format off
      {0, 1, 1, 1, {1, 6}, at8, at8},            {10000, 10, 10, 16, type1, at8, at8},
      {20000, 0, 0, 0, any, at8, at8},           {30000, 2, 2, 2, {2}, at8, at8},
      {40000, 8, 8, 8, type4, at8, at8},         {50000, 74, 74, 74, {74}, none, none},
      {70000, 11, 11, 11, type7, at8, at8},      {80000, 6, 6, 6, {1, 6}, none, none},
      {80250, 16, 16, 16, type0, none, none},    {90000, 10, 10, 16, type1, at8, at8},
      {100000, 22, 22, 22, {22}, at8, at8},      {110000, 70, 70, 70, {70}, none, at8},
      {120000, 8, 8, 8, type4, at8, at8},        {150000, 11, 11, 11, type7, at8, at8},
      {160000, 8, 8, 8, type4, at8, at8},        {170000, 10, 10, 16, type1, at8, at8},
      {180000, 0, 0, 0, any, at8, at8},          {190000, 2, 2, 2, {2}, at8, at8},
      {200000, 8, 8, 8, type4, at8, at8},        {210000, 24, 24, 24, any, at8, at8},
      {220000, 0, 0, 0, any, at8, at8},          {230000, 32, 32, 32, type7, at16, at16},
      {240000, 70, 70, 70, {70}, none, at8},     {250000, 10, 10, 16, type1, at8, at8},
      {260000, 24, 24, 24, any, at8, at8},       {270000, 7, 7, 7, {7}, at2, at2, at2},
      {280000, 8, 8, 8, type4, at8, at8},        {290000, 7, 7, 7, any, at2, at2},
      {300000, 32, 32, 32, type7, at16, at16},   {650000, 10, 10, 16, type1, at8, at8},
      {660000, 0, 0, 0, any, at8, at8},          {670000, 2, 2, 2, {2}, at8, at8},
      {680000, 8, 8, 8, type4, at8, at8},        {690000, 32, 32, 32, type7, at16, at16},
      {700000, 20, 20, 20, {112}, at8, at8},     {705000, 32, 32, 32, {112}, at8, at8},
      {720000, 0, 0, 0, any, at8, at8},          {750000, 29, 29, 29, {29}, none, at8},
      {760000, 29, 29, 29, any, none, at8},      {770000, 29, 29, 29, any, none, at8},
      {780000, 29, 29, 29, any, none, at8},      {790000, 0, 0, 0, any, at8, at8},
      {800000, 16, 16, 16, type0, at8, at8},     {810000, 10, 10, 16, type1, at8, at8},
      {820000, 0, 0, 0, any, at8, at8},          {830000, 3, 3, 3, {3}, at8, at8},
      {830200, 3, 5, 5, {3}, at8, at8},          {831000, 3, 5, 5, {3}, at38, at8, at38},
      {840000, 11, 11, 11, type7, at8, at8},     {880000, 22, 22, 22, {22}, at8, at8},
      {890000, 11, 11, 11, type7, at8, at8},     {900000, 0, 0, 0, any, at8, at8},
      {910000, 0, 11, 11, {11}, none, none},     {920000, 0, 0, 0, any, at8, at8},
      {930000, 3, 3, 3, {3}, none, at8},         {940000, 0, 0, 0, any, at8, at8},
      {950000, 20, 20, 20, {20, 32}, at8, at8},  {951000, 32, 32, 32, {20, 32}, at32, at32},
      {970000, 0, 0, 0, any, none, at8},         {980000, 16, 16, 16, {4, 16}, at8, at8},
      {980100, 16, 16, 16, {4, 16}, none, none}, {990000, 4, 4, 4, {4}, none, none},
      {1000000, 0, 0, 0, any, none, none},
      // clang-format on
  };
  for (std::size_t i = 0; i + 1 < std::size(runs); ++i) {
    const auto& run = runs[i];
    for (const int serial : {run.first, runs[i + 1].first - 1}) {
      const std::string number = zeroPadded(serial, 6);
      SCOPED_TRACE(number);
      EXPECT_EQ(readLength({number, false}, 0), run.at0);
      EXPECT_EQ(readLength({number, false}, 1), run.at1);
      EXPECT_EQ(readLength({number, true}, 1), run.known);
      for (const Byte offset : {Byte{0}, Byte{1}}) EXPECT_EQ(lengthsTaken(number, offset), run.written);
      EXPECT_EQ(listed(positionsSent({number, true}, 38)), run.sent);
      EXPECT_EQ(listed(positionsSent({number, true}, 37)), run.sent == at38 ? none : run.sent) << "too short";
      EXPECT_EQ(listed(positionsReceived({number, true})), run.received);
      EXPECT_EQ(listed(positionsSent({number, false}, 38)), run.otherwise);
      EXPECT_EQ(listed(positionsReceived({number, false})), run.otherwise == at2 ? at2 : none);
    }
  }
}

/// What a write finds in its fields.
TEST(RecordsTest, FieldsOfWrites) {
  struct Field {
    std::size_t position;     ///< from 1; the record is 0 elsewhere
    std::vector<int> values;  ///< there and behind
    int result;
  };
  const struct {
    const char* number;
    Byte offset;
    std::size_t size;
    std::vector<Field> fields;
    bool known = false;
  } rows[] = {
      // clang-format off
      // an address and, but in the shortest record, a second byte
      {"000005", 0, 1, {{1, {0}, 0}, {1, {1}, 112}, {1, {2}, 112}, {1, {3}, 0}, {1, {99}, 0},
                        {1, {100}, 112}}},
      {"080100", 0, 6, {{1, {5, 1, 255}, 0}, {1, {5, 2}, 112}, {1, {2, 1}, 112}}},
      {"080300", 0, 16, {{1, {5, 3}, 0}, {1, {5, 99}, 0}, {1, {5, 100}, 112}, {8, {255}, 0}}, true},
      // pairs: one of type 3; four of type 1, but one where masks follow
      {"030001", 0, 2, {{1, {3, 0}, 0}, {1, {99, 99}, 0}, {1, {2, 0}, 112}, {1, {0, 1}, 112},
                        {1, {100, 1}, 112}, {1, {5, 100}, 112}}},
      {"090100", 0, 17, {{1, {2}, 112}, {3, {2}, 112}, {5, {2}, 112}, {7, {2}, 112}, {9, {2}, 0}}},
      {"090100", 0, 16, {{7, {0, 1}, 112}, {7, {3, 1}, 0}}},
      {"090100", 1, 17, {{1, {2}, 112}, {3, {2}, 0}}},
      {"090100", 1, 17, {{1, {2}, 112}, {7, {2}, 112}, {9, {2}, 0}}, true},
      // four groups of 16 bytes: a pair and a third byte
      {"060001", 0, 74, {{1, {3, 3, 21, 255}, 0}, {1, {2, 4, 22}, 112}, {1, {0, 1, 0}, 112},
                         {1, {5, 100, 22}, 112}, {1, {5, 4, 22}, 105}, {1, {5, 3, 22}, 111},
                         {17, {5, 4}, 105}, {33, {0, 0, 22}, 111}, {49, {2}, 112}, {16, {255}, 0},
                         {65, {255, 255, 255}, 0}}},
      // full pieces of type 98
      {"980000", 3, 16, {{1, {0}, 0}}},         {"980000", 4, 16, {{1, {0}, 103}}},
      {"980000", 4, 4, {{1, {0}, 0}}},          {"980000", 4, 5, {{1, {0}, 104}}},
      {"080300", 255, 16, {{1, {0}, 0}}},
      // selections: the low half counts, up to 4; type 7 is sent as it is from offset 2 on
      {"960000", 1, 32, {{2, {4}, 0}, {2, {0xF4}, 0}, {2, {5}, 112}, {2, {0x1F}, 112}, {2, {0x18}, 112},
                         {8, {5}, 112}, {32, {5}, 112}, {1, {5}, 0}, {9, {5, 5}, 0}}, true},
      {"960000", 1, 32, {{2, {5}, 0}}},         {"270000", 2, 7, {{2, {5}, 112}}},
      {"070001", 2, 11, {{2, {5}, 112}}, true}, {"840000", 2, 11, {{2, {5}, 112}}, true},
      {"300000", 2, 32, {{16, {5}, 0}}, true},  {"300000", 1, 32, {{16, {5}, 112}}, true},
      {"830100", 0, 3, {{3, {5}, 0}}, true},    {"700000", 2, 112, {{8, {5}, 112}}, true},
      // type 4 has selections, but they are not checked
      {"120001", 0, 8, {{8, {5}, 0}}, true},    {"120001", 1, 10, {{2, {255}, 0}}, true},
      // clang-format on
  };
  for (const auto& row : rows) {
    for (const Field& field : row.fields) {
      Bytes data(row.size, '\0');
      for (std::size_t i = 0; i < field.values.size(); ++i)
        data[field.position - 1 + i] = character(field.values[i]);
      EXPECT_EQ(check(row.number, data, row.offset, row.known), field.result)
          << row.number << " at " << int{row.offset} << ": " << testing::PrintToString(data);
    }
  }
  Bytes completed(16, '\0');
  checkWrite({"090100", false}, 0, completed);
  EXPECT_EQ(completed, Bytes(16, '\0') + '\x04');
}

TEST(RecordsTest, LongRecordsAreWritten) {
  const struct {
    const char* number;
    Byte offset;
    bool isLong;
  } rows[] = {{"700000", 0, true},  {"704999", 0, true}, {"705000", 0, false}, {"709999", 0, false},
              {"710000", 2, true},  {"719999", 0, true}, {"71abcd", 0, true},  {"70e9  ", 0, true},
              {"700000", 1, false}, {"720000", 0, false}};
  for (const auto& [number, offset, isLong] : rows)
    EXPECT_EQ(writesLong({number, false}, offset), isLong) << number;
}

}  // namespace
}  // namespace velk::modules
