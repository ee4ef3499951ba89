#include "modules/conversion.h"

#include <gtest/gtest.h>

#include "support/bytes.h"

namespace velk::modules {
namespace {

using test::bytes;
using test::errorOf;
using Positions = std::vector<int>;

TEST(ConversionTest, OneField) {
  const std::pair<int, int> sent[] = {{0, 246}, {1, 238}, {2, 221}, {3, 187}, {4, 119}, {0xF3, 187}};
  for (const auto& [number, mask] : sent) {
    EXPECT_EQ(ConvertTXSub(bytes({9, number, 9}), 2), bytes({9, mask, 9})) << number;
  }
  const std::pair<int, int> received[] = {{238, 1}, {221, 2},  {187, 3},  {119, 4}, {254, 1},
                                          {255, 0}, {240, 15}, {0xFC, 3}, {246, 9}, {0x0D, 2}};
  for (const auto& [mask, number] : received) {
    EXPECT_EQ(ConvertRXSub(bytes({9, mask, 9}), 2), bytes({9, number, 9})) << mask;
  }
  for (int number = 5; number <= 15; ++number) {
    EXPECT_EQ(errorOf([&] { ConvertTXSub(bytes({number}), 1); }), 6) << number;
  }
  for (const Byte position : std::vector<Byte>{0, 3, 255}) {
    EXPECT_EQ(errorOf([&] { ConvertTXSub("ab", position); }), 5);
    EXPECT_EQ(errorOf([&] { ConvertRXSub("ab", position); }), 5);
  }
}

/// The positions (from 1) at which two texts differ.
Positions differences(const Bytes& a, const Bytes& b) {
  Positions positions;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i]) positions.push_back(static_cast<int>(i + 1));
  }
  return positions;
}

TEST(ConversionTest, FieldsOfRecordsByDirection) {
  const Positions none;
  const Positions second{2};
  const Positions four{2, 4, 6, 8};
  const Positions eight{2, 4, 6, 8, 10, 12, 14, 16};
  const Positions video{2, 4, 6, 8, 26, 28, 30, 32};
  const struct {
    const char* serieNr;
    bool known;
    Positions sent, received;
  } rows[] = {
      {"090255", false, none, none},  {"090255", true, four, four},      {"049999", true, four, four},
      {"050000", true, none, none},   {"069999", true, none, none},      {"070000", true, four, four},
      {"080000", true, none, none},   {"089999", true, none, none},      {"110000", true, none, four},
      {"119999", true, none, four},   {"120000", true, four, four},      {"240005", true, none, four},
      {"269999", false, none, none},  {"270000", false, second, second}, {"279999", true, second, second},
      {"290001", false, none, none},  {"290001", true, second, second},  {"300000", true, eight, eight},
      {"230000", true, eight, eight}, {"229999", true, four, four},      {"310000", false, none, none},
      {"840000", true, four, four},   {"700000", true, four, four},      {"749999", true, four, four},
      {"750000", true, none, four},   {"789999", true, none, four},      {"790000", true, four, four},
      {"830999", true, four, four},   {"831000", true, {38}, four},      {"839999", false, {38}, none},
      {"909999", true, four, four},   {"910000", true, none, none},      {"920000", true, four, four},
      {"930000", true, none, four},   {"939999", true, none, four},      {"950999", true, four, four},
      {"951000", true, video, video}, {"960000", true, video, video},    {"970000", true, none, four},
      {"980099", true, four, four},   {"980100", true, none, none},      {"990000", true, none, none},
  };
  const Bytes numbers(40, '\x02');
  const Bytes masks(40, '\xDD');
  for (const auto& row : rows) {
    const Bytes sent = ConvertTXData(row.serieNr, numbers, row.known);
    EXPECT_EQ(differences(sent, numbers), row.sent) << row.serieNr << " " << row.known;
    EXPECT_EQ(differences(ConvertRXData(row.serieNr, masks, row.known), masks), row.received) << row.serieNr;
    for (const int position : row.sent) EXPECT_EQ(sent[static_cast<std::size_t>(position) - 1], '\xDD');
  }
  EXPECT_EQ(ConvertTXData("831000", Bytes(37, '\x02'), true), Bytes(37, '\x02'));
  EXPECT_EQ(errorOf([] { ConvertTXData("090255", "\x01\x01\x01", true); }), 5) << "a field behind the end";
}

TEST(ConversionTest, SimulationRecords) {
  const std::pair<Bytes, Bytes> rows[] = {
      {bytes({0x23, 0x59, 1, 2, 3, 0x07, 0x30}), bytes({23, 59, 1, 2, 3, 7, 30})},
      {bytes({0x12, 0x10, 0xFF, 0xAA, 0xBB, 0x12}), bytes({12, 10, 0xFF, 0xAA, 0xBB, 0x12})},
      {bytes({0x12}), bytes({0x12})},
      {"", ""},
  };
  for (const auto& [bcd, numbers] : rows) {
    Bytes data = bcd;
    EXPECT_EQ(ConvertSim(data), numbers);
    EXPECT_EQ(data, numbers) << "the caller's text changes too";
  }
  Bytes bad = bytes({0x12, 0x1A});
  EXPECT_EQ(errorOf([&] { ConvertSim(bad); }), 13);
}

}  // namespace
}  // namespace velk::modules
