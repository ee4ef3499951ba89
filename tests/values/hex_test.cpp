#include "values/hex.h"

#include <gtest/gtest.h>

namespace velk {
namespace {

TEST(Hex, HasTwoDigitsAByte) {
  EXPECT_EQ(hex(Bytes("\x00\x7f\xa0\xff", 4)), "007fa0ff");
  EXPECT_EQ(hex(0xDEADBEEF), "deadbeef");
  EXPECT_EQ(hex(1), "00000001");
  EXPECT_EQ(capitalHex("\x0a\xff"), "0AFF");
  EXPECT_EQ(capitalHex("\x0a\xff", " "), "0A FF");
  EXPECT_EQ(byteOfHex("0a"), 0x0A);
  EXPECT_EQ(byteOfHex("Ff"), 0xFF);
  for (const char* const no : {"", "f", "fff", "-1", "+1", " 1", "1 ", "0x", "g0"})
    EXPECT_EQ(byteOfHex(no), std::nullopt) << no;
}

}  // namespace
}  // namespace velk
