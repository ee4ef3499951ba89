#include "cli/backup/memory_map.h"

#include <algorithm>
#include <array>

#include "cli/things/event.h"
#include "cli/things/output.h"
#include "cli/words.h"
#include "values/helpers.h"

namespace velk::cli {
namespace {

constexpr int slotsOfDay = 36;  ///< pages of a weekday's hours in BCD
constexpr int hourDigits = 16;

/// A rectangle of pages and offsets that belongs to one kind of thing.
struct Region {
  Kind kind;
  Area area;
  int firstPage, lastPage;
  int firstOffset, lastOffset;
  int (*number)(int page, int offset);  ///< of the thing that a byte belongs to
  bool readOnly = false;
};

int none(int /*page*/, int /*offset*/) {
  return 0;
}

int byPage(int page, int /*offset*/) {
  return page;
}

int byMarker(int /*page*/, int offset) {
  return 255 - offset;
}

int byBlock(int page, int offset) {
  return (page - 247) * 16 + offset / 16;
}

int byPresetText(int page, int /*offset*/) {
  return page - 34;
}

int byDelays(int page, int offset) {
  return (page - 102) * 4 + (offset - 8) / 2 + 1;
}

int byFlags(int page, int /*offset*/) {
  return (page - 102) * 4 + 1;
}

int byLowRecords(int /*page*/, int offset) {
  return (offset - 12) / 4;
}

int byMiddleRecords(int /*page*/, int offset) {
  return 29 + (offset - 128) / 4;
}

int byHighRecords(int /*page*/, int offset) {
  return 61 + (offset - 128) / 4;
}

int bySwitchPage(int page, int /*offset*/) {
  return page - 128;
}

int byInfrared(int page, int offset) {
  return (page - 10) * 16 + offset / 16;
}

int byEventPage(int page, int /*offset*/) {
  const int slot = page % slotsOfDay;
  return page / slotsOfDay * hoursOfDay + slot / hourDigits * 10 + slot % hourDigits;
}

// The first region that holds a byte decides. The byte 0x10FE is both the marker of output 1, which is no
// roller, and the flanks of source 16: it counts for these.
// clang-format off
constexpr std::array regions{
    Region{Kind::settings,     Area::external,    0,   0,   2,   3, none, true},
    Region{Kind::settings,     Area::external,    0,   0,   4,   6, none},
    Region{Kind::settings,     Area::external,    0,   0,   7,   8, none, true},
    Region{Kind::settings,     Area::external,    2,   2,   8,  10, none, true},
    Region{Kind::output,       Area::external,   16,  16, 156, 253, byMarker},
    Region{Kind::links,        Area::external,    0,   0,  31,  32, byPage, true},  // shared with the mailbox
    Region{Kind::links,        Area::external,    0,   0,  33,  38, byPage},
    Region{Kind::links,        Area::external,    0,   0, 254, 254, byPage},
    Region{Kind::links,        Area::external,    3,  99,  31,  38, byPage},
    Region{Kind::links,        Area::external,    3,  99, 254, 254, byPage},
    Region{Kind::links,        Area::external,  101, 124,  31,  38, byPage},
    Region{Kind::links,        Area::external,  101, 124, 254, 254, byPage},
    Region{Kind::displayText,  Area::external,    6,  34,  40,  55, byPage},
    Region{Kind::preset,       Area::external,   35, 126,  40,  55, byPresetText},
    Region{Kind::preset,       Area::external,  102, 124,   8,  15, byDelays},
    Region{Kind::presetFlags,  Area::external,  102, 124,  18,  18, byFlags},
    Region{Kind::output,       Area::external,    1,  99,   0, 255, byPage},
    Region{Kind::switchTime,   Area::external,  128, 254, 200, 255, bySwitchPage},
    Region{Kind::switchTime,   Area::external,  255, 255, 200, 246, bySwitchPage},  // the clock follows
    Region{Kind::preset,       Area::block,      58, 154,  16, 127, byLowRecords},
    Region{Kind::preset,       Area::block,       3,  99, 128, 255, byMiddleRecords},
    Region{Kind::preset,       Area::block,     102, 198, 128, 255, byHighRecords},
    Region{Kind::output,       Area::block,     247, 247,  16, 255, byBlock},
    Region{Kind::output,       Area::block,     248, 252,   0, 255, byBlock},
    Region{Kind::output,       Area::block,     253, 253,   0,  63, byBlock},
    Region{Kind::infraredText, Area::highBlock,  10,  13,   0, 255, byInfrared},
};
// clang-format on

/// The pages between the hours, whose second digit would be above 9, are none.
constexpr bool isEventPage(int page) {
  const int slot = page % slotsOfDay;
  return page < weekdays * slotsOfDay && slot % hourDigits < 10;
}

const Region* regionAt(Spot spot) {
  const auto* const found = std::find_if(regions.begin(), regions.end(), [&](const Region& r) {
    return r.area == spot.area && spot.page >= r.firstPage && spot.page <= r.lastPage &&
           spot.offset >= r.firstOffset && spot.offset <= r.lastOffset;
  });
  return found == regions.end() ? nullptr : found;
}

bool lineHolds(Spot line, const Wanted& wanted) {
  for (int i = 0; i < lineSize; ++i) {
    const Region* const region = regionAt(line);
    if (region != nullptr && wanted(region->kind)) return true;
    ++line.offset;
  }
  return false;
}

}  // namespace

std::string_view areaOf(Spot spot) {
  return areaNames.at(static_cast<std::size_t>(spot.area));
}

std::string addressOf(Spot spot) {
  return hex(Bytes{character(spot.page), character(spot.offset)});
}

std::string keyOf(Spot spot) {
  return std::string(areaOf(spot)) + " " + addressOf(spot);
}

std::optional<Thing> thingAt(Spot spot) {
  if (const Region* const region = regionAt(spot)) {
    return Thing{.kind = region->kind, .number = region->number(spot.page, spot.offset)};
  }
  if (spot.area != Area::highBlock || !isEventPage(spot.page)) return std::nullopt;
  return Thing{.kind = Kind::events, .number = byEventPage(spot.page, spot.offset)};
}

bool isReadOnly(Spot spot) {
  const Region* const region = regionAt(spot);
  return region != nullptr && region->readOnly;
}

std::vector<Spot> fixedLines(const Wanted& wanted) {
  constexpr int size = 256;
  std::vector<Spot> lines;
  for (const Area area : {Area::external, Area::block, Area::highBlock}) {
    for (int page = 0; page < size; ++page) {
      for (int offset = 0; offset < size; offset += lineSize) {
        const Spot line{.area = area, .page = static_cast<Byte>(page), .offset = static_cast<Byte>(offset)};
        if (lineHolds(line, wanted)) lines.push_back(line);
      }
    }
  }
  return lines;
}

Byte eventPage(int day, int hour) {
  return static_cast<Byte>(day * slotsOfDay + values::DECtoBCD(static_cast<Byte>(hour)));
}

}  // namespace velk::cli
