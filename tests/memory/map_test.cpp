#include "memory/map.h"

#include <gtest/gtest.h>

#include "controller/ctl_init.h"
#include "controller/ctl_lang.h"
#include "controller/ctl_soft.h"
#include "parameters/ctl_irtext.h"
#include "parameters/layouts.h"
#include "parameters/modes.h"
#include "timed/preset.h"
#include "timed/simulation.h"
#include "timed/switch_time.h"

namespace velk::memory {
namespace {

using enum link::Area;

TEST(MapTest, NamesWhatLiesAtAByte) {
  const std::pair<link::Address, const char*> rows[] = {
      // clang-format off
      {{external, 0, 1}, ""},                 {{external, 0, 2}, "initialisation block"},
      {{external, 0, 31}, "mailbox, data"},   {{external, 0, 32}, "soft link 0/0"},
      {{external, 2, 31}, ""},                {{external, 2, 10}, "initialisation block"},
      {{external, 5, 1}, "output 5, mode"},   {{external, 255, 251}, "clock, hours"},
      {{external, 5, 79}, "output 5, name"},  {{external, 34, 55}, "display text 34"},
      {{external, 100, 31}, ""},              {{external, 124, 18}, "presets 89 to 92, simulation"},
      {{block, 247, 15}, ""},                 {{block, 253, 64}, ""},
      {{highBlock, 26, 128}, ""},             {{highBlock, 26, 127}, "long-record buffer"},
      {{highBlock, 14, 0}, ""},               {{highBlock, 252, 0}, ""},  // no hours
      {{highExternal, 5, 1}, ""},
      // what a method reaches is what the map says of it
      {controller::firstSetting, "initialisation block"}, {controller::displayText(6), "display text 6"},
      {controller::clockHold, "clock, hold"},             {controller::clockSeconds, "clock, seconds"},
      {controller::flanksOf(16), "soft links of 16, flanks"},
      {controller::flanksOf(124), "soft links of 124, flanks"},
      {controller::linkRecord(30, 3), "soft link 30/3"},
      {parameters::rollerMarker(7), "roller marker of output 7"},
      {parameters::blockOf(1), "output 1, block"},        {parameters::blockOf(19), "output 19, block"},
      {parameters::blockOf(99).next(15), "output 99, block"},
      {parameters::infraredText(17), "infrared text 17"}, {parameters::infraredText(63), "infrared text 63"},
      {timed::presetText(1), "preset 1, text"},           {timed::presetText(92), "preset 92, text"},
      {timed::presetDelays(4), "preset 4, delays"},
      {timed::presetFlags(5), "presets 5 to 8, simulation"},
      {timed::presetRecord(28, 99), "preset 28, record 99"},
      {timed::presetRecord(29, 3), "preset 29, record 3"},
      {timed::presetRecord(92, 3), "preset 92, record 3"},
      {timed::switchTimeBlock(3), "switch time 3"},
      {timed::eventList(0, 18), "simulation, weekday 0, hour 18"},
      {timed::eventList(6, 23), "simulation, weekday 6, hour 23"},
      // clang-format on
  };
  for (const auto& [at, name] : rows) EXPECT_EQ(nameOf(at), name);
}

TEST(MapTest, TellsWhatIsConfiguration) {
  using enum ThingKind;
  const struct {
    link::Address at;
    std::optional<Thing> thing;
    bool readOnly = false;
  } rows[] = {
      // clang-format off
      {{external, 0, 0}, {}},                           {{external, 0, 3}, Thing{settings, 0}, true},
      {{external, 0, 6}, Thing{settings, 0}},           {{external, 0, 32}, Thing{links, 0}, true},
      {{external, 0, 33}, Thing{links, 0}},             {{external, 2, 31}, Thing{output, 2}},
      {{external, 99, 255}, Thing{output, 99}},         {{external, 100, 31}, {}},
      {{external, 102, 15}, Thing{preset, 4}},          {{external, 103, 18}, Thing{presetFlags, 5}},
      {{external, 255, 246}, Thing{switchTime, 127}},   {{external, 255, 247}, {}},
      {{highBlock, 251, 255}, Thing{events, 167}},      {{highBlock, 26, 0}, {}},
      // clang-format on
  };
  for (const auto& row : rows) {
    EXPECT_EQ(thingAt(row.at), row.thing) << nameOf(row.at);
    EXPECT_EQ(isReadOnly(row.at), row.readOnly) << nameOf(row.at);
  }
}

}  // namespace
}  // namespace velk::memory
