#include "simulator/trace.h"

#include <gtest/gtest.h>

namespace velk::simulator {
namespace {

TEST(TraceTest, NamesPlaces) {
  using enum Memory;
  const std::pair<Place, const char*> rows[] = {
      {{external, 0, 1}, ""},
      {{external, 0, 2}, "initialisation block"},
      {{external, 0, 31}, "mailbox, data"},
      {{external, 0, 32}, "soft link 0/0"},
      {{external, 2, 10}, "initialisation block"},
      {{external, 255, 251}, "clock, hours"},
      {{external, 5, 1}, "output 5, mode"},
      {{external, 5, 79}, "output 5, name"},
      {{external, 34, 55}, "display text 34"},
      {{external, 35, 40}, "preset 1, text"},
      {{external, 102, 14}, "preset 4, delays"},
      {{external, 124, 18}, "presets 89 to 92, simulation"},
      {{external, 0x10, 0xF8}, "roller marker of output 7"},
      {{external, 30, 37}, "soft link 30/3"},
      {{external, 131, 200}, "switch time 3"},
      {{block, 128, 3}, "preset 29, record 3"},
      {{block, 252, 102}, "preset 92, record 3"},
      {{block, 0x30, 248}, "output 19, block"},
      {{highBlock, 16, 11}, "infrared text 17"},
      {{highBlock, 127, 26}, "long-record buffer"},
      {{highBlock, 0, 251}, "simulation, weekday 6, hour 23"},
      {{highExternal, 5, 1}, ""},
  };
  for (const auto& [place, name] : rows) EXPECT_EQ(nameOf(place), name);
}

TEST(TraceTest, WritesRequestsAndReplies) {
  EXPECT_EQ(describe({.command = 0x2F, .dph = 5, .dpl = 16}), "read  16 V 0510  output 5, parameters");
  EXPECT_EQ(describe({.command = 0x60, .dph = 5, .dpl = 1, .data = "\x05"}),
            "write 1 V 0501 05  output 5, mode");
  EXPECT_EQ(describe({.command = 0x8F, .dph = 0, .dpl = 10}), "read  16 H+ 000A  infrared text 0");
  EXPECT_EQ(describe({.command = 0x61, .dph = 100, .dpl = 0, .data = "\xAB\x0C"}), "write 2 V 6400 AB 0C");
  EXPECT_EQ(describe(Reply{}), "ok");
  EXPECT_EQ(describe(Reply{.status = 0, .data = "\x01\xff"}), "01 FF");
  EXPECT_EQ(describe(Reply{.status = 7, .data = "\x01"}), "status 7");
}

}  // namespace
}  // namespace velk::simulator
