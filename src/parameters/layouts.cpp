#include "parameters/layouts.h"

#include <algorithm>
#include <array>

#include "parameters/modes.h"
#include "values/result.h"

namespace velk::parameters {
namespace {

constexpr Item whole(Byte at) {
  return {.form = Form::whole, .at = at};
}

constexpr Item low(Byte at) {
  return {.form = Form::low, .at = at, .mask = 0x0F};
}

constexpr Item high(Byte at) {
  return {.form = Form::high, .at = at, .mask = 0xF0};
}

constexpr Item flag(Byte at, int bit, char set, char clear) {
  return {.form = Form::flag, .at = at, .mask = static_cast<Byte>(1 << bit), .set = set, .clear = clear};
}

/// The flags of the byte at page offset 16.
constexpr Item memory(int bit) {
  return flag(16, bit, 'M', 'S');
}

constexpr Item inBlock(Byte at) {
  return {.form = Form::whole, .at = at, .area = Area::block};
}

constexpr Item further = high(furtherByte.at);

// "BI" and "IN": three bytes for all, then four groups of two bytes and a flag.
constexpr std::array groups{
    whole(17), low(18),   high(18),                                    //
    whole(19), whole(20), memory(0), whole(21), whole(22), memory(1),  //
    whole(23), whole(24), memory(2), whole(25), whole(26), memory(3),  //
    further,
};

constexpr std::array push{whole(17), low(18), high(18), further};

// The items 4, 5, 7 and 8 lie at 19, 21, 20 and 22: the controller's order, not a slip.
constexpr std::array dimmer{
    whole(17), low(18),   high(18),  Item{.form = Form::stored, .at = modeOffset, .set = '2', .clear = '1'},
    whole(19), whole(21), memory(0), whole(20),
    whole(22), memory(1), further,
};

// A roller is stored as 4 only: with 3 it would read back as a dimmer.
constexpr auto roller = [] {
  auto items = dimmer;
  items[3] = {.form = Form::stored, .at = modeOffset, .set = '2', .clear = '2'};
  return items;
}();

constexpr std::array timer{
    whole(17), low(18),   high(18),  whole(19), memory(0), whole(20),
    memory(1), whole(21), memory(2), whole(22), memory(3), further,
};

// The scattered order of bytes and flags is the controller's own.
constexpr std::array upDown{
    whole(17), low(18),   high(18),  flag(16, 7, '1', '2'),
    whole(19), whole(20), whole(25), memory(0),
    whole(23), memory(2), whole(21), whole(22),
    whole(26), memory(1), whole(24), memory(3),
    further,
};

constexpr std::array lightControl{Item{.form = Form::zero, .at = 17, .set = 'O', .clear = 'I'}};

constexpr std::array autonomous{whole(20), whole(21), whole(22), whole(23)};

// Six pairs, which is why an offset has to be even.
constexpr std::array remote{
    whole(19), whole(20), whole(21), whole(22), whole(23), whole(24),
    whole(25), whole(26), whole(27), whole(28), whole(29), whole(30),
};

constexpr std::array thermostat{
    low(18),   high(18),  whole(19), whole(20), whole(21), whole(22), whole(23), whole(24),
    whole(25), whole(26), whole(27), whole(28), whole(11), whole(12), further,
};

constexpr std::array programSwitch{
    whole(17), whole(4), whole(5), whole(6), whole(7), whole(8), whole(9), whole(10), whole(11),
};

constexpr std::array multiLevel{
    inBlock(0),  inBlock(1),  inBlock(2),  inBlock(3),  inBlock(4),  inBlock(5),
    inBlock(6),  inBlock(7),  inBlock(8),  inBlock(9),  inBlock(10), inBlock(11),
    inBlock(12), inBlock(13), inBlock(14), inBlock(15), further,
};

constexpr std::span<const Item> logic = std::span(multiLevel).first(16);

constexpr ByteRun block11{.at = 16, .size = 11};
constexpr ByteRun block7{.at = 16, .size = 7};
constexpr ByteRun block3{.at = 16, .size = 3};
constexpr ByteRun one17{.at = 17, .size = 1};
constexpr ByteRun ownBlock{.at = 0, .size = 16, .area = Area::block};

constexpr std::array<Layout, lastMode> table{{
    {.code = "BI", .block = block11, .own = {}, .items = groups, .bound = 15},
    {.code = "PB", .block = block3, .own = {}, .items = push, .bound = 3},
    {.code = "DI", .block = block7, .own = {}, .items = dimmer, .bound = 10, .alsoStoredAs = rollerMode},
    {.code = "RO", .block = block11, .own = {}, .items = roller, .bound = 10, .marked = true},
    {.code = "T1", .block = block7, .own = {}, .items = timer, .bound = 11},
    {.code = "T2", .block = block7, .own = {}, .items = timer, .bound = 11},
    {.code = "T3", .block = block7, .own = {}, .items = timer, .bound = 11},
    {.code = "T4", .block = block7, .own = {}, .items = timer, .bound = 11},
    {.code = "UD", .block = block11, .own = {}, .items = upDown, .bound = 16},
    {.code = "LC", .block = one17, .own = {}, .items = lightControl, .bound = 0},
    {.code = "RC", .block = {}, .own = {.at = 19, .size = 12}, .items = remote, .offsets = OffsetRule::even},
    {.code = "RS", .block = {}, .own = {}, .items = {}, .bound = 0},
    {.code = "SS", .block = block3, .own = {}, .items = push, .bound = 3},
    {.code = "IN", .block = block11, .own = {}, .items = groups, .bound = 15},
    {.code = "TH",
     .block = {.at = 18, .size = 11},
     .own = {.at = 11, .size = 2},
     .items = thermostat,
     .bound = 14},
    {.code = "ML", .block = {}, .own = ownBlock, .items = multiLevel, .bound = 0, .itemsWithoutCount = true},
    {.code = "LO", .block = {}, .own = ownBlock, .items = logic, .bound = 0},
    {.code = "PS", .block = one17, .own = {.at = 4, .size = 8}, .items = programSwitch, .bound = 8},
    {.code = "AL",
     .block = {},
     .own = {},
     .items = {},
     .offsets = OffsetRule::any,
     .counts = CountRule::none},
    {.code = "AU",
     .block = {},
     .own = {.at = 20, .size = 4},
     .items = autonomous,
     .bound = 3,
     .counts = CountRule::all},
    {.code = "T5", .block = block7, .own = {}, .items = timer, .bound = 11},
}};

// Proofs. An output's page holds more than its parameters: soft links and their flanks (31 to 38 and 254),
// display and preset texts (40 to 55), its name (64 to 79), and in page 16 the roller markers (156 to 254).

template <class Holds>
constexpr bool forEveryItem(Holds holds) {
  return std::all_of(table.begin(), table.end(), [&](const Layout& layout) {
    return std::all_of(layout.items.begin(), layout.items.end(),
                       [&](const Item& item) { return holds(layout, item); });
  });
}

static_assert(forEveryItem([](const Layout& /*layout*/, const Item& item) {
                if (item.area == Area::block) return item.at < 16;
                if (item.form == Form::stored) return item.at == modeOffset;
                return (item.at >= 2 && item.at <= 30) || item.at == 56;
              }),
              "no item lies in another table of the controller");
static_assert(blockOf(1).page == 247 && blockOf(99).page == 253,
              "the blocks lie behind the pages 3 to 198 that hold the records of presets");
static_assert(forEveryItem([](const Layout& layout, const Item& item) {
                return layout.block.holds(item.area, item.at) || layout.own.holds(item.area, item.at) ||
                       furtherByte.holds(item.area, item.at) || item.form == Form::stored;
              }),
              "every item is read");
static_assert(forEveryItem([](const Layout& layout, const Item& item) {
                return std::all_of(layout.items.begin(), layout.items.end(), [&](const Item& other) {
                  return &other == &item || other.area != item.area || other.at != item.at ||
                         (other.mask & item.mask) == 0;
                });
              }),
              "no bit is used twice");
static_assert(std::all_of(table.begin(), table.end(),
                          [](const Layout& layout) {
                            return layout.offsets != OffsetRule::upToBound || layout.bound == 0 ||
                                   layout.items.size() == layout.bound + std::size_t{1};
                          }),
              "the bound is the last item");

/// What is written reads back, writing what was read changes nothing, and no bit of a neighbour moves.
template <const auto& items>
constexpr bool readsBack = std::all_of(items.begin(), items.end(), [](const Item& item) {
  if (item.form == Form::whole) return item.mask == 255;
  const bool stored = item.form == Form::stored;  // then the byte is 3 or 4, or 4 alone
  for (int before = !stored ? 0 : item.set == item.clear ? 4 : 3; before <= (stored ? 4 : 255); ++before) {
    const auto byte = static_cast<Byte>(before);
    if (encoded(item, decoded(item, byte), byte) != byte) return false;
  }
  for (int c = 0; c <= 255; ++c) {
    const auto low = encoded(item, character(c), 0);
    const auto high = encoded(item, character(c), 255);
    if (low.has_value() != high.has_value()) return false;
    if (!low) continue;
    if (decoded(item, *low) != character(c) || decoded(item, *high) != character(c)) return false;
    if ((*low & ~item.mask) != 0 || (*high | item.mask) != 255) return false;
  }
  return true;
});

// Array by array: compilers bound the length of one proof.
static_assert(readsBack<groups> && readsBack<push> && readsBack<dimmer> && readsBack<roller> &&
              readsBack<timer> && readsBack<upDown> && readsBack<lightControl> && readsBack<thermostat> &&
              readsBack<multiLevel>);

bool offsetFits(const Layout& layout, Byte offset) {
  const int position = offset;
  constexpr int lastPosition = 293;  // more than a byte can hold: only evenness decides
  switch (layout.offsets) {
    case OffsetRule::upToBound:
      return offset <= layout.bound;
    case OffsetRule::even:
      return position % 2 == 0 && position <= lastPosition;
    case OffsetRule::any:
      break;
  }
  return true;
}

}  // namespace

const Layout* layoutOf(std::string_view code) {
  const auto* const found =
      std::find_if(table.begin(), table.end(), [&](const Layout& layout) { return layout.code == code; });
  return found == table.end() ? nullptr : found;
}

std::span<const Layout> layouts() {
  return table;
}

link::Address addressOf(Byte output, Area area, Byte at) {
  if (area == Area::external) return {.page = output, .offset = at};
  return blockOf(output).next(at);
}

Range resolveRange(const Layout& layout, Byte offset, std::int16_t& count) {
  constexpr int allItems = 255;
  const int items = static_cast<int>(layout.items.size());
  if (!offsetFits(layout, offset)) throw link::Stop{badOffset};
  if (layout.counts == CountRule::none) return {.first = 0, .end = 0};
  // With `CountRule::all` the offset is not counted: such a mode reports all its items as transferred
  // although the text holds only those from the offset on. Hosts know it that way.
  const int skipped = layout.counts == CountRule::all ? 0 : offset;
  if (count == allItems) {
    count = static_cast<std::int16_t>(std::max(0, items - skipped));
  } else if (count > items || count + skipped > items) {
    throw link::Stop{countTooLarge};
  }
  const int end = std::min(items, offset + std::max<int>(0, count));
  return {.first = offset, .end = static_cast<std::size_t>(std::max<int>(offset, end))};
}

}  // namespace velk::parameters
