#include "component/serial.h"
#include "simulator/loopback_host.h"
#include "support/bytes.h"
#include "values/numbers.h"

namespace velk::test {
namespace {

class Helpers : public testing::Test {
 protected:
  static Byte byte(int value) { return static_cast<Byte>(value); }

  simulator::LoopbackHost host;
  Serial serial{host};
};

TEST_F(Helpers, OfBytes) {
  expectEach({{0, 0}, {9, 9}, {10, 16}, {59, 0x59}, {123, 195}, {159, 249}, {160, raises(6)}},
             [&](int number) { return serial.DECtoBCD(byte(number)); });
  expectEach({{0, 0}, {0x10, 10}, {0x59, 59}, {0x99, 99}, {0x9A, raises(13)}, {0xA0, raises(13)}},
             [&](int number) { return decimalOfBcd(byte(number)); });
  expectEach({{5, false}, {6, true}, {7, false}, {8, false}, {29, false}, {30, raises(6)}},
             [&](int bit) { return serial.IfSetBit(64, byte(bit)); });
  expectEach({{1, 0}, {12, 2}, {128, 7}},
             [&](int value) { return std::get<Byte>(serial.WhatBit(byte(value))); });
  EXPECT_EQ(serial.WhatBit(0), Value());
  expectEach({{0, 0}, {1, 0}, {3, 0}, {18, 1}, {240, 0}, {248, 3}},
             [&](int value) { return serial.LowNibbleBit(byte(value)); });
  for (const auto& [one, other] : {std::pair(3, 200), {200, 3}, {3, 3}}) {
    EXPECT_EQ(serial.Minimum(byte(one), byte(other)), Value(Byte{3}));
  }
  expectEach({{-1, raises(6)}, {0, 0}, {255, 255}, {256, raises(6)}}, checkedByte);
}

TEST_F(Helpers, LdZrKeepsTheLastDigitsAndLosesTheSign) {
  const std::vector<std::tuple<Value, int, std::string>> table{
      {std::int16_t{5}, 2, "05"}, {std::int16_t{-7}, 3, "007"},   {123.0, 2, "23"},        {1.5, 5, "001.5"},
      {Value(), 2, "00"},         {std::string("42"), 4, "0042"}, {std::int16_t{5}, 0, ""}};
  for (const auto& [number, length, text] : table) EXPECT_EQ(serial.LdZr(number, byte(length)), Value(text));
}

/// The numbers that hosts know the failures by, their result bytes, and a word of what a user is told.
TEST_F(Helpers, RunTimeErrors) {
  const std::vector<std::tuple<RuntimeError::Number, int, int, const char*>> table{
      {RuntimeError::invalidArgument, 5, 100, "form"},
      {RuntimeError::overflow, 6, 100, "range"},
      {RuntimeError::outOfMemory, 7, 100, "memory"},
      {RuntimeError::typeMismatch, 13, 100, "text"},
      {RuntimeError::invalidPropertyValue, 380, 100, "settings"},
      {RuntimeError::invalidPortNumber, 8002, 100, "not exist"},
      {RuntimeError::portAlreadyOpen, 8005, 56, "already open"},
      {RuntimeError::deviceNotOpen, 8012, 84, "to close"},
      {RuntimeError::portNotOpen, 8018, 55, "OpenCom"},
      {RuntimeError::deviceBusy, 8019, 100, "not take"},
      {RuntimeError::deviceFailed, 8020, 100, "unplugged"},
      {RuntimeError::badSocketState, 40006, 58, "OpenTCP"},
      {RuntimeError::socketNotClosed, 40020, 58, "CloseTCP"}};
  for (const auto& [error, number, result, word] : table) {
    EXPECT_EQ(RuntimeError(error).number(), number);
    EXPECT_EQ(serial.ConvertErr(number), result) << number;
    EXPECT_NE(std::string(RuntimeError(error).what()).find(word), std::string::npos) << number;
  }
  EXPECT_EQ(serial.ConvertErr(8005.5), 100);
}

TEST(Numbers, FromTexts) {
  using Table = std::vector<std::pair<std::string, double>>;
  const Table leading{{"09", 9}, {"9x", 9}, {" \t\r\n-5", -5}, {"", 0},      {"ab", 0},
                      {"-", 0},  {"+", 0},  {"+-5", 0},        {"inf", 0},   {"nan", 0},
                      {".", 0},  {"+5", 5}, {"1e2x", 100},     {"-.5", -0.5}};
  for (const auto& [text, number] : leading) EXPECT_EQ(leadingNumber(text), number) << text;
  const Table whole{
      {"&o17", 15},           {" &H1f ", 31}, {"&hFF", 255},  {"+2.5", 2.5}, {"-9", -9},
      {"7\r\n", 7},           {".5", 0.5},    {" 1E2 ", 100}, {"1e-999", 0}, {"-1E-999999999999999999999", 0},
      {"&H100000000", 0x1p32}};
  for (const auto& [text, number] : whole) EXPECT_EQ(parseNumber(text), number) << text;
  EXPECT_EQ(parseNumber("&H00FFFFFFFFFFFFFFFF"), 0x1p64);
  const std::string zeros(400, '0');
  EXPECT_EQ(parseNumber("0." + zeros + "1"), 0);
  for (const std::string& text : {std::string("1e999"), std::string("-1e999"), "-1" + zeros,
                                  "1" + zeros + "e-10", std::string("1e99999999999999999999")}) {
    EXPECT_EQ(errorOf([&] { convert(text, Type::integer); }), 6) << text;
  }
  for (const char* text : {"", "1x", "&H", "&O8", "&O", "&HG", "&X1", "1 2", "--1", "\t \n", "2,5", "1.000,5",
                           "&H10000000000000000"}) {
    EXPECT_EQ(errorOf([&] { parseNumber(text); }), 13) << text;
  }
}

TEST(Numbers, ConversionsRoundHalfToEvenAndKeepTheirRange) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  expectEach<double>(
      {{2.5, 2}, {3.5, 4}, {255.4, 255}, {255.5, raises(6)}, {-0.5, 0}, {-0.51, raises(6)}, {nan, raises(6)}},
      roundTo<Byte>);
  expectEach<double>({{32767.4, 32767}, {32767.5, raises(6)}, {-32768.5, -32768}, {-32768.51, raises(6)}},
                     roundTo<std::int16_t>);
  EXPECT_EQ(convert(254.5, Type::byte), Value(Byte{254}));
  EXPECT_EQ(convert(true, Type::byte), Value(Byte{255}));
  EXPECT_EQ(convert(false, Type::byte), Value(Byte{0}));
  EXPECT_EQ(convert(true, Type::integer), Value(std::int16_t{-1}));
  EXPECT_EQ(convert(std::string("FALSE"), Type::boolean), Value(false));
  EXPECT_EQ(convert(std::string("tRue"), Type::boolean), Value(true));
  EXPECT_EQ(convert(1 / 3.0, Type::text), Value(std::string("0.333333333333333")));
}

TEST(Numbers, EveryKindOfValueAsTextAndNumber) {
  const std::vector<std::tuple<Value, std::string, double, Type>> table{
      {Value(), "", 0, Type::none},
      {true, "True", -1, Type::boolean},
      {false, "False", 0, Type::boolean},
      {Byte{200}, "200", 200, Type::byte},
      {std::int16_t{-3}, "-3", -3, Type::integer},
      {std::int32_t{70000}, "70000", 70000, Type::variant},
      {1e30, "1E+30", 1e30, Type::variant},
      {std::string("12"), "12", 12, Type::text}};
  for (const auto& [value, text, number, type] : table) {
    EXPECT_EQ(toText(value), text);
    EXPECT_EQ(toNumber(value), number) << text;
    EXPECT_EQ(convert(value, Type::boolean), Value(number != 0)) << text;
    EXPECT_EQ(convert(value, Type::variant), value) << text;
    EXPECT_TRUE(holds(value, Type::variant)) << text;
    for (const Type other : {Type::none, Type::boolean, Type::byte, Type::integer, Type::text}) {
      EXPECT_EQ(holds(value, other), other == type) << text;
    }
  }
}

}  // namespace
}  // namespace velk::test
