#include "memory/map.h"

#include <algorithm>
#include <array>

#include "values/numbers.h"

namespace velk::memory {
namespace {

using link::Address;
using link::Area;

int samePage(int page, int /*offset*/) {
  return page;
}

template <int steps>
int pageFrom(int page, int /*offset*/) {
  return page + steps;
}

/// Blocks of 16 bytes, 16 of them a page.
template <int firstPage>
int blockFrom(int page, int offset) {
  return (page - firstPage) * 16 + offset / 16;
}

/// Presets whose records fill four offsets each.
template <int steps>
int presetAt(int /*page*/, int offset) {
  return offset / 4 + steps;
}

/// Presets whose delays and flags lie together, four presets a page.
int presetInGroup(int page, int offset) {
  return (page - 102) * 4 + 1 + (offset - 8) / 2;
}

template <int member>
int memberOfGroup(int page, int /*offset*/) {
  return (page - 102) * 4 + member;
}

int markedOutput(int /*page*/, int offset) {
  return 255 - offset;
}

int linkAt(int /*page*/, int offset) {
  return (offset - 31) / 2;
}

// A list of events has a page: those of the weekdays before, plus the hour in packed BCD.
constexpr int digit = 16;

int weekdayOf(int page, int /*offset*/) {
  return page / bcdHoursOfDay;
}

int hourOf(int page, int /*offset*/) {
  return page % bcdHoursOfDay / digit * 10 + page % bcdHoursOfDay % digit;
}

/// The pages between the hours, whose second digit would be above 9, are none.
bool isHour(int page) {
  return page % bcdHoursOfDay % digit < 10;
}

using enum Area;
using enum ThingKind;
constexpr std::nullopt_t noThing = std::nullopt;
constexpr bool readOnly = true;

// The byte 0x10FE is both the marker of output 1, which is no roller, and the flanks of source 16: it counts
// for these. The first two bytes of the links of source 0 are shared with the mailbox. The outputs 1 and 2
// and page 100 have no links.
// clang-format off
constexpr std::array table{
    Region{external,    0,   0,   0,   0, "mailbox, trigger", noThing},
    Region{external,    0,   0,   2,   3, "initialisation block", settings, nullptr, nullptr, readOnly},
    Region{external,    0,   0,   4,   6, "initialisation block", settings},
    Region{external,    0,   0,   7,   8, "initialisation block", settings, nullptr, nullptr, readOnly},
    Region{external,    0,   0,  10,  15, "mailbox, header", noThing},
    Region{external,    0,   0,  16,  30, "mailbox, data", noThing},
    Region{external,    0,   0,  31,  31, "mailbox, data", links, samePage, nullptr, readOnly},
    Region{external,    0,   0,  32,  32, "soft link %/%", links, samePage, linkAt, readOnly},
    Region{external,    0,   0,  33,  38, "soft link %/%", links, samePage, linkAt},
    Region{external,    0,   0, 254, 254, "soft links of %, flanks", links, samePage},
    Region{external,    2,   2,   8,  10, "initialisation block", settings, nullptr, nullptr, readOnly},
    Region{external,    3,  99,  31,  38, "soft link %/%", links, samePage, linkAt},
    Region{external,    3,  99, 254, 254, "soft links of %, flanks", links, samePage},
    Region{external,  101, 124,  31,  38, "soft link %/%", links, samePage, linkAt},
    Region{external,  101, 124, 254, 254, "soft links of %, flanks", links, samePage},
    Region{external,   16,  16, 156, 253, "roller marker of output %", output, markedOutput},
    Region{external,    6,  34,  40,  55, "display text %", displayText, samePage},
    Region{external,   35, 126,  40,  55, "preset %, text", preset, pageFrom<-34>},
    Region{external,  102, 124,   8,  15, "preset %, delays", preset, presetInGroup},
    Region{external,  102, 124,  18,  18, "presets % to %, simulation", presetFlags, memberOfGroup<1>, memberOfGroup<4>},
    Region{external,    1,  99,   1,   1, "output %, mode", output, samePage},
    Region{external,    1,  99,   2,  30, "output %, parameters", output, samePage},
    Region{external,    1,  99,  56,  56, "output %, further byte", output, samePage},
    Region{external,    1,  99,  64,  79, "output %, name", output, samePage},
    Region{external,    1,  99,   0, 255, "", output, samePage},
    Region{external,  128, 254, 200, 255, "switch time %", switchTime, pageFrom<-128>},
    Region{external,  255, 255, 200, 246, "switch time %", switchTime, pageFrom<-128>},
    Region{external,  255, 255, 247, 248, "clock, hold", noThing},
    Region{external,  255, 255, 249, 249, "clock, seconds", noThing},
    Region{external,  255, 255, 250, 250, "clock, minutes", noThing},
    Region{external,  255, 255, 251, 251, "clock, hours", noThing},
    Region{external,  255, 255, 252, 252, "clock, weekday", noThing},
    Region{external,  255, 255, 253, 253, "clock, day", noThing},
    Region{external,  255, 255, 254, 254, "clock, month", noThing},
    Region{external,  255, 255, 255, 255, "clock, year", noThing},
    Region{block,      58, 154,  16, 127, "preset %, record %", preset, presetAt<-3>, pageFrom<-55>},
    Region{block,       3,  99, 128, 255, "preset %, record %", preset, presetAt<-3>, samePage},
    Region{block,     102, 198, 128, 255, "preset %, record %", preset, presetAt<29>, pageFrom<-99>},
    Region{block,     247, 247,  16, 255, "output %, block", output, blockFrom<247>},
    Region{block,     248, 252,   0, 255, "output %, block", output, blockFrom<247>},
    Region{block,     253, 253,   0,  63, "output %, block", output, blockFrom<247>},
    Region{highBlock,  10,  13,   0, 255, "infrared text %", infraredText, blockFrom<10>},
    Region{highBlock,  26,  26,   0, 127, "long-record buffer", noThing},
    Region{highBlock,   0, 251,   0, 255, "simulation, weekday %, hour %", events, weekdayOf, hourOf, false, isHour},
};
// clang-format on

constexpr bool holds(const Region& region, Address at) {
  return region.area == at.area && at.page >= region.firstPage && at.page <= region.lastPage &&
         at.offset >= region.firstOffset && at.offset <= region.lastOffset &&
         (region.pages == nullptr || region.pages(at.page));
}

}  // namespace

std::span<const Region> regions() {
  return table;
}

const Region* regionAt(Address at) {
  const auto* const found =
      std::find_if(table.begin(), table.end(), [at](const Region& region) { return holds(region, at); });
  return found == table.end() ? nullptr : found;
}

std::string nameOf(Address at) {
  const Region* const region = regionAt(at);
  if (region == nullptr) return {};
  std::string name;
  NumberRule number = region->first;
  for (const char c : region->name) {
    if (c == '%') {
      name += std::to_string(number(at.page, at.offset));
      number = region->second;
    } else {
      name += c;
    }
  }
  return name;
}

std::optional<Thing> thingAt(Address at) {
  const Region* const region = regionAt(at);
  if (region == nullptr || !region->kind) return std::nullopt;
  int number = region->first == nullptr ? 0 : region->first(at.page, at.offset);
  if (region->kind == events) number = number * hoursOfDay + region->second(at.page, at.offset);
  return Thing{.kind = *region->kind, .number = number};
}

bool isReadOnly(Address at) {
  const Region* const region = regionAt(at);
  return region != nullptr && region->readOnly;
}

}  // namespace velk::memory
