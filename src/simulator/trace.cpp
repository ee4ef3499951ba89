#include "simulator/trace.h"

#include <algorithm>
#include <array>

namespace velk::simulator {
namespace {

/// A number of a name, from the page and the position in it.
using Number = int (*)(int page, int position);

int samePage(int p, int /*position*/) {
  return p;
}

template <int offset>
int pageFrom(int p, int /*position*/) {
  return p + offset;
}

/// Blocks of 16 bytes, 16 of them a page.
template <int firstPage>
int blockFrom(int p, int position) {
  return (p - firstPage) * 16 + position / 16;
}

/// Presets whose records fill four positions each.
template <int offset>
int presetAt(int /*page*/, int position) {
  return position / 4 + offset;
}

/// Presets whose delays and flags lie together, four presets a page.
int presetInGroup(int p, int position) {
  return (p - 102) * 4 + 1 + (position - 8) / 2;
}

template <int member>
int memberOfGroup(int p, int /*position*/) {
  return (p - 102) * 4 + member;
}

int rollerOutput(int /*page*/, int position) {
  return 255 - position;
}

int linkAt(int /*page*/, int position) {
  return (position - 31) / 2;
}

/// A page for each weekday and hour: weekday times 36, plus the hour in packed BCD.
int weekdayOf(int p, int /*position*/) {
  return p / 36;
}

int hourOf(int p, int /*position*/) {
  return p % 36 / 16 * 10 + p % 36 % 16;
}

/// A run of pages with the same run of positions in each. In the external memories the page is the high
/// address byte; in the block memories it is the low one.
struct Region {
  Memory memory;
  Byte firstPage;
  Byte lastPage;
  Byte first;
  Byte last;
  std::string_view name;  ///< each "%" stands for the next number
  std::array<Number, 2> numbers{};
};

using enum Memory;

// The first region that holds a place names it, so the special ones stand in front of the output pages.
constexpr std::array regions{
    Region{external, 0, 0, 0, 0, "mailbox, trigger"},
    Region{external, 0, 0, 2, 8, "initialisation block"},
    Region{external, 0, 0, 10, 15, "mailbox, header"},
    Region{external, 0, 0, 16, 31, "mailbox, data"},
    Region{external, 2, 2, 8, 10, "initialisation block"},
    Region{external, 16, 16, 156, 254, "roller marker of output %", {rollerOutput}},
    Region{external, 255, 255, 247, 248, "clock, hold"},
    Region{external, 255, 255, 249, 249, "clock, seconds"},
    Region{external, 255, 255, 250, 250, "clock, minutes"},
    Region{external, 255, 255, 251, 251, "clock, hours"},
    Region{external, 255, 255, 252, 252, "clock, weekday"},
    Region{external, 255, 255, 253, 253, "clock, day"},
    Region{external, 255, 255, 254, 254, "clock, month"},
    Region{external, 255, 255, 255, 255, "clock, year"},
    Region{external, 0, 124, 31, 38, "soft link %/%", {samePage, linkAt}},
    Region{external, 0, 124, 254, 254, "soft links of %, flanks", {samePage}},
    Region{external, 6, 34, 40, 55, "display text %", {samePage}},
    Region{external, 35, 126, 40, 55, "preset %, text", {pageFrom<-34>}},
    Region{external, 102, 124, 8, 15, "preset %, delays", {presetInGroup}},
    Region{external, 102, 124, 18, 18, "presets % to %, simulation", {memberOfGroup<1>, memberOfGroup<4>}},
    Region{external, 128, 255, 200, 255, "switch time %", {pageFrom<-128>}},
    Region{external, 1, 99, 1, 1, "output %, mode", {samePage}},
    Region{external, 1, 99, 2, 30, "output %, parameters", {samePage}},
    Region{external, 1, 99, 56, 56, "output %, further byte", {samePage}},
    Region{external, 1, 99, 64, 79, "output %, name", {samePage}},
    Region{block, 247, 253, 0, 255, "output %, block", {blockFrom<247>}},
    Region{block, 58, 154, 16, 127, "preset %, record %", {presetAt<-3>, pageFrom<-55>}},
    Region{block, 3, 99, 128, 255, "preset %, record %", {presetAt<-3>, samePage}},
    Region{block, 102, 198, 128, 255, "preset %, record %", {presetAt<29>, pageFrom<-99>}},
    Region{highBlock, 10, 13, 0, 255, "infrared text %", {blockFrom<10>}},
    Region{highBlock, 26, 26, 0, 127, "long-record buffer"},
    Region{highBlock, 0, 251, 0, 255, "simulation, weekday %, hour %", {weekdayOf, hourOf}},
};

std::string hex(Byte value) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  return {digits[value >> 4], digits[value & 15]};
}

std::string hexList(std::string_view data) {
  std::string text;
  for (const char c : data) text += (text.empty() ? "" : " ") + hex(byteValue(c));
  return text;
}

}  // namespace

std::string nameOf(Place place) {
  const bool external = isExternal(place.memory);
  const Byte where = external ? place.dph : place.dpl;
  const Byte position = external ? place.dpl : place.dph;
  const auto* const found = std::find_if(regions.begin(), regions.end(), [&](const Region& region) {
    return region.memory == place.memory && where >= region.firstPage && where <= region.lastPage &&
           position >= region.first && position <= region.last;
  });
  if (found == regions.end()) return {};
  std::string name;
  const auto* number = found->numbers.begin();
  for (const char c : found->name) {
    name += c == '%' ? std::to_string((*number++)(where, position)) : std::string(1, c);
  }
  return name;
}

std::string describe(const link::Request& request) {
  const Place place{.memory = memoryOf(request.command), .dph = request.dph, .dpl = request.dpl};
  const bool high = (request.command & link::highBank) != 0;
  std::string text = (request.command & link::write) != 0 ? "write " : "read  ";
  text += std::to_string(link::dataCount(request.command));
  text += isExternal(place.memory) ? " V" : " H";
  text += (high ? "+ " : " ") + hex(request.dph) + hex(request.dpl);
  if (!request.data.empty()) text += " " + hexList(request.data);
  const std::string name = nameOf(place);
  return name.empty() ? text : text + "  " + name;
}

std::string describe(const Reply& reply) {
  if (reply.status != carriedOut) return "status " + std::to_string(reply.status);
  return reply.data.empty() ? "ok" : hexList(reply.data);
}

}  // namespace velk::simulator
