#include "simulator/controller.h"

#include <gtest/gtest.h>

#include <sstream>

#include "link/frames.h"
#include "simulator/house.h"
#include "simulator/image.h"
#include "simulator/trace.h"
#include "support/scripted_peer.h"

namespace velk::simulator {
namespace {

using test::bytes;

link::Request read(int count, std::string_view direction, int dph, int dpl) {
  return {.command = link::commandByte(static_cast<Byte>(count), direction, false),
          .dph = static_cast<Byte>(dph),
          .dpl = static_cast<Byte>(dpl),
          .data = {}};
}

link::Request write(int count, std::string_view direction, int dph, int dpl, std::string_view data) {
  return {.command = link::commandByte(static_cast<Byte>(count), direction, true),
          .dph = static_cast<Byte>(dph),
          .dpl = static_cast<Byte>(dpl),
          .data = data};
}

TEST(ControllerTest, OrdersBytesByAreaAndKeepsFourMemories) {
  Controller controller;
  EXPECT_EQ(controller.answer(write(3, "V", 0x12, 0xFE, "abc")).bytes(), Bytes(1, '\0'));
  EXPECT_EQ(controller.answer(read(1, "V", 0x13, 0x00)).data, "c");
  EXPECT_EQ(controller.answer(write(3, "H", 0xFE, 0x12, "def")).status, 0);
  EXPECT_EQ(controller.answer(read(1, "H", 0x00, 0x12)).data, "f") << "a page of the block area wraps";
  controller.answer(write(2, "V", 0xFF, 0xFF, "gh"));
  EXPECT_EQ(controller.answer(read(1, "V", 0, 0)).data, "h");
  controller.answer(write(129, "V", 0x13, 0x00, "x"));
  EXPECT_EQ(controller.answer(read(1, "V", 0x13, 0x00)).data, "c") << "the high bank is another memory";
  EXPECT_EQ(controller.answer(read(129, "V", 0x13, 0x00)).data, "x");
  EXPECT_EQ(controller.answer(read(129, "H", 0x13, 0x00)).data, Bytes(1, '\0'));
}

TEST(ControllerTest, RefusesDataThatDoNotFitTheCount) {
  Controller controller;
  EXPECT_EQ(controller.answer(write(2, "V", 1, 1, "a")).status, 1);
  EXPECT_EQ(controller.answer({.command = 0x21, .dph = 1, .dpl = 1, .data = "ab"}).bytes(), bytes({1, 0, 0}));
  EXPECT_EQ(controller.answer({.command = 0x31, .dph = 1, .dpl = 1, .data = {}}).bytes(), Bytes(1, '\0'));
  EXPECT_EQ(controller.snapshot(), Store());
}

/// Counts its reads in its byte, and doubles what is written to it.
class Counter final : public Device {
 public:
  [[nodiscard]] bool covers(Place place) const override { return place == cell; }
  void beforeRead(Store& store, const Transfer& /*all*/) override { ++store[cell]; }
  void afterWrite(Store& store, const Transfer& /*all*/) override {
    store[cell] = static_cast<Byte>(store[cell] * 2);
  }

  static constexpr Place cell{.dph = 2, .dpl = 0};
};

TEST(ControllerTest, CallsDevicesThatATransferTouches) {
  Controller controller;
  controller.attach(std::make_unique<Counter>());
  controller.answer(write(1, "V", 2, 0, "\x05"));
  EXPECT_EQ(controller.answer(read(16, "V", 1, 0xF1)).data.back(), 11);
  controller.answer(read(15, "V", 1, 0xF1));
  controller.answer(read(16, "H", 2, 0));
  EXPECT_EQ(controller.snapshot()[Counter::cell], 11);
}

TEST(ImageTest, KeepsEveryByteOfTheHouse) {
  std::stringstream text;
  Store store = house();
  store[{.memory = Memory::highExternal, .dph = 0xFF, .dpl = 0xFF}] = 1;
  writeImage(text, store);
  EXPECT_EQ(readImage(text), store);
}

TEST(ImageTest, ReadsWhatPeopleWrite) {
  std::istringstream text("velk-memory 1\r\n# lamp\r\n\r\nV 05FF 01 ff\r\nH+ F00A 2A 2b\r\nend\r\n");
  const Store store = readImage(text);
  EXPECT_EQ(store.read({.dph = 5, .dpl = 0xFF}, 2), "\x01\xff");
  EXPECT_EQ(store.read({.memory = Memory::highBlock, .dph = 0xF0, .dpl = 10}, 2), "*+");
}

TEST(ImageTest, SaysWhatIsWrongAndWhere) {
  const std::pair<const char*, const char*> wrong[] = {
      {"", "line 1: this is no memory image"},
      {"\x7f"
       "ELF",
       "line 1: this is no memory image"},
      {"velk-memory 2\nend\n", "line 1: the image has version 2, known is version 1"},
      {"velk-memory 1\nV 0500 01\n", "the image is not complete: its last line, \"end\", is missing"},
      {"velk-memory 1\n\nX 0500 01\nend\n", "line 3: there is no memory \"X\""},
      {"velk-memory 1\nV\nend\n", "line 2: the address is missing"},
      {"velk-memory 1\nV 500 01\nend\n", "line 2: \"500\" is not a number of 4 hexadecimal digits"},
      {"velk-memory 1\nV 0500 0G\nend\n", "line 2: \"0G\" is not a number of 2 hexadecimal digits"},
      {"velk-memory 1\nV 0500\nend\n", "line 2: a line holds 1 to 16 bytes"},
      {"velk-memory 1\nV 0500 0 1 2 3 4 5 6 7 8 9 a b c d e f 10\nend\n",
       "line 2: \"0\" is not a number of 2 hexadecimal digits"},
  };
  for (const auto& [image, message] : wrong) {
    std::istringstream text(image);
    try {
      readImage(text);
      ADD_FAILURE() << image;
    } catch (const ImageError& error) {
      EXPECT_STREQ(error.what(), message);
    }
  }
}

TEST(TraceTest, NamesPlaces) {
  const std::pair<Place, const char*> named[] = {
      {{.dph = 0, .dpl = 0}, "mailbox, trigger"},
      {{.dph = 0, .dpl = 4}, "initialisation block"},
      {{.dph = 255, .dpl = 251}, "clock, hours"},
      {{.dph = 5, .dpl = 1}, "output 5, mode"},
      {{.dph = 5, .dpl = 16}, "output 5, parameters"},
      {{.dph = 6, .dpl = 40}, "display text 6"},
      {{.dph = 34, .dpl = 40}, "display text 34"},
      {{.dph = 35, .dpl = 40}, "preset 1, text"},
      {{.dph = 126, .dpl = 55}, "preset 92, text"},
      {{.dph = 102, .dpl = 14}, "preset 4, delays"},
      {{.dph = 124, .dpl = 18}, "presets 89 to 92, simulation"},
      {{.dph = 0x10, .dpl = 0xF8}, "roller marker of output 7"},
      {{.dph = 30, .dpl = 37}, "soft link 30/3"},
      {{.dph = 131, .dpl = 200}, "switch time 3"},
      {{.dph = 100, .dpl = 100}, ""},
      {{.memory = Memory::block, .dph = 16, .dpl = 58}, "preset 1, record 3"},
      {{.memory = Memory::block, .dph = 124, .dpl = 154}, "preset 28, record 99"},
      {{.memory = Memory::block, .dph = 128, .dpl = 3}, "preset 29, record 3"},
      {{.memory = Memory::block, .dph = 252, .dpl = 102}, "preset 92, record 3"},
      {{.memory = Memory::block, .dph = 0x30, .dpl = 248}, "output 19, block"},
      {{.memory = Memory::highBlock, .dph = 16, .dpl = 11}, "infrared text 17"},
      {{.memory = Memory::highBlock, .dph = 0, .dpl = 251}, "simulation, weekday 6, hour 23"},
      {{.memory = Memory::highExternal, .dph = 5, .dpl = 1}, ""},
  };
  for (const auto& [place, name] : named) EXPECT_EQ(nameOf(place), name);
}

TEST(TraceTest, WritesRequestsAndReplies) {
  EXPECT_EQ(describe(read(16, "V", 5, 16)), "read  16 V 0510  output 5, parameters");
  EXPECT_EQ(describe(write(1, "V", 5, 1, "\x05")), "write 1 V 0501 05  output 5, mode");
  EXPECT_EQ(describe(read(144, "H", 0, 10)), "read  16 H+ 000A  infrared text 0");
  EXPECT_EQ(describe(Reply{}), "ok");
  EXPECT_EQ(describe(Reply{.status = 0, .data = "\x01\xff"}), "01 FF");
  EXPECT_EQ(describe(Reply{.status = 7, .data = "\x01"}), "status 7");
}

}  // namespace
}  // namespace velk::simulator
