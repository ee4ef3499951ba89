#include "simulator/trace.h"

#include <gtest/gtest.h>

namespace velk::simulator {
namespace {

TEST(TraceTest, WritesRequestsAndReplies) {
  EXPECT_EQ(describe({.command = 0x2F, .high = 5, .low = 16}), "read  16 V 0510  output 5, parameters");
  EXPECT_EQ(describe({.command = 0x60, .high = 5, .low = 1, .data = "\x05"}),
            "write 1 V 0501 05  output 5, mode");
  EXPECT_EQ(describe({.command = 0x8F, .high = 0, .low = 10}), "read  16 H+ 000A  infrared text 0");
  EXPECT_EQ(describe({.command = 0x61, .high = 100, .low = 0, .data = "\xAB\x0C"}), "write 2 V 6400 AB 0C");
  EXPECT_EQ(describe({.command = 0x30, .high = 5, .low = 1}), "read  1 V 0501 short  output 5, mode");
  EXPECT_EQ(describe(Reply{}), "ok");
  EXPECT_EQ(describe(Reply{.status = 0, .data = "\x01\xff"}), "01 FF");
  EXPECT_EQ(describe(Reply{.status = 7, .data = "\x01"}), "status 7");
}

}  // namespace
}  // namespace velk::simulator
