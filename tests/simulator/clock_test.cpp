#include "simulator/clock.h"

#include <gtest/gtest.h>

#include "support/bytes.h"

namespace velk::simulator {
namespace {

using test::bytes;
using namespace std::chrono_literals;

class ClockTest : public testing::Test {
 protected:
  ClockTest() {
    controller.attach(std::make_unique<Clock>([this] { return now; }));
  }

  Bytes read() { return controller.answer({.command = 0x26, .high = 255, .low = 249}).data; }
  void write(int low, const Bytes& data) {
    controller.answer(link::writeRequest(static_cast<Byte>(data.size()),
                                         {.page = 255, .offset = static_cast<Byte>(low)}, data));
  }

  std::chrono::nanoseconds now = 1000s;
  Controller controller;
};

TEST_F(ClockTest, GoesOnFromWhatIsWritten) {
  const struct {
    Bytes from;
    std::chrono::nanoseconds passed;
    Bytes to;
  } rows[] = {
      {bytes({0x30, 0x20, 0x10, 1, 4, 3, 0x24}), 999ms, bytes({0x30, 0x20, 0x10, 1, 4, 3, 0x24})},
      {bytes({0x30, 0x20, 0x10, 1, 4, 3, 0x24}), 1s, bytes({0x31, 0x20, 0x10, 1, 4, 3, 0x24})},
      {bytes({0x59, 0x59, 0x23, 7, 0x28, 2, 0x24}), 1s, bytes({0, 0, 0, 1, 0x29, 2, 0x24})},
      {bytes({0x59, 0x59, 0x23, 3, 0x28, 2, 0x23}), 1s, bytes({0, 0, 0, 4, 1, 3, 0x23})},
      {bytes({0x59, 0x59, 0x23, 3, 0x31, 0x12, 0x99}), 1s, bytes({0, 0, 0, 4, 1, 1, 0})},
      {bytes({0, 0, 0, 1, 1, 1, 0x24}), 24h * 366 + 61s, bytes({1, 1, 0, 3, 1, 1, 0x25})},
      {Bytes(7, '\0'), 25h, bytes({0, 0, 1, 1, 0, 0, 0})},  // there is no such date
  };
  for (const auto& row : rows) {
    now += 700ms;
    write(249, row.from);
    now += row.passed;
    EXPECT_EQ(read(), row.to);
  }
}

TEST_F(ClockTest, CountsEverySecondHoweverOftenItIsReadAndIsSetBack) {
  write(249, Bytes(7, '\0'));
  for (int i = 0; i < 100; ++i) {
    now += 550ms;
    read();
  }
  EXPECT_EQ(read().front(), '\x55');
  write(249, Bytes(7, '\0'));
  EXPECT_EQ(read().front(), '\0');
}

TEST_F(ClockTest, StandsStillWhileItIsHeld) {
  for (const int hold : {247, 248}) {
    write(249, bytes({0x10, 0, 0, 1, 1, 1, 0x24}));
    now += 5s;
    write(hold, "\xff");
    EXPECT_EQ(read().front(), '\x15');
    now += 1h;
    write(250, Bytes(1, '\x30'));
    now += 1h;
    EXPECT_EQ(read(), bytes({0x15, 0x30, 0, 1, 1, 1, 0x24}));
    write(hold, Bytes(1, '\0'));
    now += 2s;
    EXPECT_EQ(read(), bytes({0x17, 0x30, 0, 1, 1, 1, 0x24}));
  }
}

}  // namespace
}  // namespace velk::simulator
