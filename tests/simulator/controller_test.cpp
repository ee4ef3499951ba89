#include "simulator/controller.h"

#include <gtest/gtest.h>

#include "support/bytes.h"

namespace velk::simulator {
namespace {

using test::bytes;

/// Requests by their command byte; with data they write.
link::Request at(int command, int high, int low, std::string_view data = {}) {
  return {.command = static_cast<Byte>(command),
          .high = static_cast<Byte>(high),
          .low = static_cast<Byte>(low),
          .data = data};
}

TEST(ControllerTest, OrdersBytesByAreaAndKeepsFourMemories) {
  Controller controller;
  EXPECT_EQ(controller.answer(at(0x62, 0x12, 0xFE, "abc")).bytes(), Bytes(1, '\0'));
  EXPECT_EQ(controller.answer(at(0x20, 0x13, 0x00)).data, "c");
  EXPECT_EQ(controller.answer(at(0x42, 0xFE, 0x12, "def")).status, 0);
  EXPECT_EQ(controller.answer(at(0x02, 0xFE, 0x12)).data, "def");
  EXPECT_EQ(controller.answer(at(0x00, 0x00, 0x12)).data, "f") << "a page of the block area wraps";
  controller.answer(at(0x61, 0xFF, 0xFF, "gh"));
  EXPECT_EQ(controller.answer(at(0x20, 0, 0)).data, "h");
  controller.answer(at(0xE0, 0x13, 0x00, "x"));
  EXPECT_EQ(controller.answer(at(0x20, 0x13, 0x00)).data, "c") << "the high bank is another memory";
  EXPECT_EQ(controller.answer(at(0xA0, 0x13, 0x00)).data, "x");
  EXPECT_EQ(controller.answer(at(0x80, 0x13, 0x00)).data, Bytes(1, '\0'));
}

TEST(ControllerTest, RefusesDataThatDoNotFitTheCount) {
  Controller controller;
  EXPECT_EQ(controller.answer(at(0x61, 1, 1, "a")).bytes(), bytes({1}));
  EXPECT_EQ(controller.answer(at(0x21, 1, 1, "ab")).bytes(), bytes({1, 0, 0}));
  EXPECT_EQ(controller.answer(at(0x31, 1, 1)).bytes(), bytes({0})) << "a short reply";
  EXPECT_TRUE(controller.snapshot() == Store());
}

/// Counts its reads in its byte, and doubles what is written to it.
class Counter final : public Device {
 public:
  [[nodiscard]] bool covers(Address place) const override { return place == cell; }
  void beforeRead(Store& store, const Transfer& /*all*/) override { ++store[cell]; }
  void afterWrite(Store& store, const Transfer& /*all*/) override {
    store[cell] = static_cast<Byte>(store[cell] * 2);
  }

  static constexpr Address cell{.page = 2, .offset = 0};
};

TEST(ControllerTest, CallsDevicesThatATransferTouches) {
  Controller controller;
  controller.attach(std::make_unique<Counter>());
  controller.answer(at(0x60, 2, 0, "\x05"));
  EXPECT_EQ(controller.answer(at(0x2F, 1, 0xF1)).data.back(), 11);
  controller.answer(at(0x2E, 1, 0xF1));  // ends in front of it
  controller.answer(at(0x0F, 2, 0));     // another memory
  EXPECT_EQ(controller.snapshot()[Counter::cell], 11);
}

}  // namespace
}  // namespace velk::simulator
