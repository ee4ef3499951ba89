#include <gtest/gtest.h>

#include "component/serial.h"
#include "simulator/loopback_host.h"
#include "support/bytes.h"
#include "values/numbers.h"

namespace velk {
namespace {

using test::errorOf;

class Helpers : public testing::Test {
 protected:
  simulator::LoopbackHost host;
  Serial serial{host};
};

TEST_F(Helpers, DECtoBCDPacksUpTo159AndOverflowsBeyond) {
  EXPECT_EQ(serial.DECtoBCD(0), 0);
  EXPECT_EQ(serial.DECtoBCD(59), 0x59);
  EXPECT_EQ(serial.DECtoBCD(123), 195);
  EXPECT_EQ(serial.DECtoBCD(159), 249);
  EXPECT_EQ(errorOf([&] { serial.DECtoBCD(160); }), 6);
}

TEST_F(Helpers, IfSetBitOverflowsFromBit30) {
  EXPECT_TRUE(serial.IfSetBit(64, 6));
  EXPECT_FALSE(serial.IfSetBit(64, 5));
  EXPECT_FALSE(serial.IfSetBit(255, 8));
  EXPECT_FALSE(serial.IfSetBit(255, 29));
  EXPECT_EQ(errorOf([&] { serial.IfSetBit(1, 30); }), 6);
}

TEST_F(Helpers, LowestBit) {
  EXPECT_EQ(serial.WhatBit(12), Value(Byte{2}));
  EXPECT_EQ(serial.WhatBit(128), Value(Byte{7}));
  EXPECT_EQ(serial.WhatBit(0), Value());
  EXPECT_EQ(serial.LowNibbleBit(240), 0);
  EXPECT_EQ(serial.LowNibbleBit(248), 3);
}

TEST_F(Helpers, MinimumHoldsAByte) {
  EXPECT_EQ(serial.Minimum(7, 7), Value(Byte{7}));
  EXPECT_EQ(serial.Minimum(3, 200), Value(Byte{3}));
}

TEST_F(Helpers, LdZrKeepsTheLastDigitsAndLosesTheSign) {
  const auto zeros = [&](const Value& number, Byte length) { return toText(serial.LdZr(number, length)); };
  EXPECT_EQ(zeros(std::int16_t{5}, 2), "05");
  EXPECT_EQ(zeros(std::int16_t{-7}, 3), "007");
  EXPECT_EQ(zeros(123.0, 2), "23");
  EXPECT_EQ(zeros(1.5, 5), "001.5");
  EXPECT_EQ(zeros(Value(), 2), "00");
  EXPECT_EQ(zeros(std::string("42"), 4), "0042");
  EXPECT_EQ(zeros(std::int16_t{5}, 0), "");
  EXPECT_EQ(errorOf([&] { zeros(std::string("x"), 2); }), 13);
}

TEST_F(Helpers, ConvertErrKnowsFiveNumbers) {
  const std::vector<std::pair<int, int>> table{{8005, 56},  {8012, 84}, {8018, 55}, {40006, 58},
                                               {40020, 58}, {0, 100},   {6, 100}};
  for (const auto& [number, result] : table) EXPECT_EQ(serial.ConvertErr(number), result) << number;
  EXPECT_EQ(serial.ConvertErr(8005.0), 56);
  EXPECT_EQ(serial.ConvertErr(8005.5), 100);
}

TEST(Numbers, LeadingNumberIsLenient) {
  EXPECT_EQ(leadingNumber("09"), 9);
  EXPECT_EQ(leadingNumber("9x"), 9);
  EXPECT_EQ(leadingNumber("  -5"), -5);
  for (const char* text : {"", "ab", "-", "+-5", "inf", "nan", "."})
    EXPECT_EQ(leadingNumber(text), 0) << text;
}

TEST(Numbers, ConversionsRoundHalfToEvenAndKeepTheirRange) {
  EXPECT_EQ(convert(2.5, Type::byte), Value(Byte{2}));
  EXPECT_EQ(convert(3.5, Type::byte), Value(Byte{4}));
  EXPECT_EQ(convert(255.4, Type::byte), Value(Byte{255}));
  EXPECT_EQ(convert(true, Type::byte), Value(Byte{255}));
  EXPECT_EQ(convert(true, Type::integer), Value(std::int16_t{-1}));
  EXPECT_EQ(convert(std::string(" &H1f "), Type::byte), Value(Byte{31}));
  EXPECT_EQ(convert(std::string("FALSE"), Type::boolean), Value(false));
  EXPECT_EQ(convert(std::int32_t{-7}, Type::text), Value(std::string("-7")));
  EXPECT_EQ(errorOf([] { convert(255.5, Type::byte); }), 6);
  EXPECT_EQ(errorOf([] { convert(-1.0, Type::byte); }), 6);
  EXPECT_EQ(errorOf([] { convert(std::nan(""), Type::integer); }), 6);
  for (const char* text :
       {"", "1x", "&H", "&O8", "&O", "1 2", "--1", "\t \n", "2,5", "1.000,5", "&H10000000000000000"}) {
    EXPECT_EQ(errorOf([&] { convert(std::string(text), Type::byte); }), 13) << text;
  }
}

TEST(Numbers, TextsOfAnySizeAndBase) {
  const std::vector<std::pair<const char*, double>> table{
      {"&o17", 15},
      {"&hFF", 255},
      {"+2.5", 2.5},
      {"1e-999", 0},
      {"-1e-999", 0},
      {" 1E2 ", 100},
      {"&HFFFFFFFF", 4294967295.0},
      {"&H100000000", 4294967296.0},
      {"&H00FFFFFFFFFFFFFFFF", 18446744073709551616.0},
      {".5", 0.5},
  };
  for (const auto& [text, number] : table) EXPECT_EQ(toNumber(std::string(text)), number) << text;
  for (const char* text : {"1e999", "-1e999"}) {
    EXPECT_EQ(errorOf([&] { convert(std::string(text), Type::integer); }), 6) << text;
  }
}

TEST(Numbers, EveryKindOfValueAsTextAndNumber) {
  const std::vector<std::tuple<Value, std::string, double>> table{
      {Value(), "", 0},        {true, "True", -1},           {false, "False", 0},
      {Byte{200}, "200", 200}, {std::int16_t{-3}, "-3", -3}, {std::int32_t{70000}, "70000", 70000},
      {0.5, "0.5", 0.5},       {1e30, "1E+30", 1e30},        {std::string("12"), "12", 12},
  };
  for (const auto& [value, text, number] : table) {
    EXPECT_EQ(toText(value), text);
    EXPECT_EQ(toNumber(value), number) << text;
    EXPECT_EQ(convert(value, Type::boolean), Value(number != 0)) << text;
    EXPECT_EQ(convert(value, Type::variant), value) << text;
    EXPECT_TRUE(holds(convert(value, Type::text), Type::text)) << text;
    EXPECT_FALSE(holds(value, Type::none) && value != Value());
  }
}

}  // namespace
}  // namespace velk
