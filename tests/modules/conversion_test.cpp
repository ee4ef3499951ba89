#include "modules/conversion.h"

#include <gtest/gtest.h>

#include "support/bytes.h"

namespace velk::modules {
namespace {

using test::bytes;
using test::errorOf;

TEST(ConversionTest, OneField) {
  const std::pair<int, int> sent[] = {{0, 246}, {1, 238}, {2, 221}, {3, 187}, {4, 119}, {0xF3, 187}};
  for (const auto& [number, mask] : sent)
    EXPECT_EQ(ConvertTXSub(bytes({9, number, 9}), 2), bytes({9, mask, 9})) << number;
  const std::pair<int, int> received[] = {{238, 1}, {221, 2},  {187, 3},  {119, 4}, {254, 1},
                                          {255, 0}, {240, 15}, {0xFC, 3}, {246, 9}, {0x0D, 2}};
  for (const auto& [mask, number] : received)
    EXPECT_EQ(ConvertRXSub(bytes({9, mask, 9}), 2), bytes({9, number, 9})) << mask;
  for (int number = 5; number <= 15; ++number)
    EXPECT_EQ(errorOf([&] { ConvertTXSub(bytes({number}), 1); }), 6) << number;
  for (const Byte position : std::vector<Byte>{0, 3, 255}) {
    EXPECT_EQ(errorOf([&] { ConvertTXSub("ab", position); }), 5);
    EXPECT_EQ(errorOf([&] { ConvertRXSub("ab", position); }), 5);
  }
}

TEST(ConversionTest, RecordsByDirection) {
  EXPECT_EQ(ConvertTXData({"110005", true}, Bytes(10, '\x03')), Bytes(10, '\x03'));
  EXPECT_EQ(ConvertRXData({"110005", true}, Bytes(10, '\xBB')), "\xBB\x03\xBB\x03\xBB\x03\xBB\x03\xBB\xBB");
  EXPECT_EQ(ConvertTXData({"090255", true}, bytes({0, 1, 2, 2, 3, 3, 4, 4, 5})),
            bytes({0, 238, 2, 221, 3, 187, 4, 119, 5}));
  EXPECT_EQ(ConvertTXData({"1e9999", true}, Bytes(8, '\x01')), Bytes(8, '\x01')) << "above all ranges";
  EXPECT_EQ(errorOf([] { ConvertTXData({"090255", true}, "\x01\x01\x01"); }), 5) << "a field behind the end";
}

}  // namespace
}  // namespace velk::modules
