#include "modules/records.h"

#include <algorithm>
#include <array>

#include "link/memory.h"
#include "modules/conversion.h"
#include "values/result.h"

namespace velk::modules {
namespace {

using link::Stop;

constexpr RecordRow noRecord{.serials = all, .check = Check::none};
constexpr Series ordinary{.serials = all};
constexpr Byte longRecord = 112;

// clang-format off
/// The first row that fits decides.
constexpr std::array rows{
    // type  serial numbers    read  write accepts    check               traits; from which `Offset` on, length read of
    //                                                                    known models, last `Offset` for full pieces
    RecordRow{0,  upTo(9999),       1,    {1, 6},          Check::address},
    RecordRow{0,  upTo(80249),      6,    {1, 6},          Check::address},
    RecordRow{0,  all,              16,   {1, 16},         Check::address},
    RecordRow{1,  all,              10,   {17},            Check::pairs4,     {.masks = true}, 0, 16},
    RecordRow{3,  all,              2,    {2},             Check::pair},
    RecordRow{4,  all,              8,    {8, 9, 10},      Check::length},
    RecordRow{5,  all,              74,   {74},            Check::groups},
    RecordRow{7,  longSevens,       32,   {11, 32},        Check::selections, {.asItIs = true}},
    RecordRow{7,  all,              11,   {11, 32}},
    RecordRow{10, all,              22,   {22},            Check::selections, {.masks = true, .version = true}},
    RecordRow{11, all,              70,   {70}},
    RecordRow{21, all,              24,   {},              Check::none},
    RecordRow{24, all,              70,   {70}},
    RecordRow{26, all,              24,   {},              Check::none},
    RecordRow{27, all,              7,    {7}},
    RecordRow{29, all,              7,    {},              Check::none},
    RecordRow{70, from(705000),     32,   {longRecord},    Check::selections, {.longWrite = true}},
    RecordRow{70, all,              20,   {longRecord},    Check::selections, {.longWrite = true}},
    RecordRow{71, from(705000),     32,   {longRecord},    Check::selections, {.longWrite = true}},
    RecordRow{71, all,              20,   {longRecord},    Check::selections, {.longWrite = true}},
    RecordRow{75, all,              29,   {29}},
    RecordRow{76, all,              29,   {},              Check::none},
    RecordRow{77, all,              29,   {},              Check::none},
    RecordRow{78, all,              29,   {},              Check::none},
    RecordRow{83, from(830200),     5,    {3},             Check::selections, {}, 1},
    RecordRow{83, all,              3,    {3}},
    RecordRow{88, all,              22,   {22}},
    RecordRow{91, all,              11,   {11},            Check::selections, {}, 1},
    RecordRow{91, all,              0,    {11}},
    RecordRow{93, all,              3,    {3}},
    RecordRow{95, upTo(950999),     20,   {20, 32},        Check::selections, {.version = true, .firmware = true}},
    RecordRow{95, all,              32,   {20, 32},        Check::selections, {.version = true, .firmware = true}},
    RecordRow{96, upTo(950999),     20,   {20, 32},        Check::selections, {.version = true, .firmware = true}},
    RecordRow{96, all,              32,   {20, 32},        Check::selections, {.version = true, .firmware = true}},
    RecordRow{98, all,              16,   {4, 16},         Check::selections, {}, 0, {}, 3},
    RecordRow{99, all,              4,    {4}},
};
// clang-format on
static_assert(std::ranges::is_sorted(rows, {}, &RecordRow::type),
              "so that a type is found, or missed, at a glance");

/// No two overlap.
constexpr std::array series{
    Series{.serials = {705000, 709999}, .pieceWrite = true},
    Series{.serials = {830200, 839999}, .readFlag = true, .betweenPieces = Seconds(2)},
    Series{.serials = {950000, 950020}, .betweenPieces = Seconds(2)},
    Series{.serials = {980100, 989999}, .longRead = true},
};
static_assert(std::ranges::is_sorted(series, {}, [](const Series& row) { return row.serials.first; }));

bool isGoodPair(Byte first, Byte second) {
  const bool used = first != 0 || second != 0;
  return first <= 99 && second <= 99 && (!used || first >= 3);
}

void checkPairs(std::string_view data, std::size_t pairs) {
  for (std::size_t i = 0; i < pairs; ++i) {
    if (!isGoodPair(byteAt(data, 2 * i), byteAt(data, 2 * i + 1))) throw Stop{badAddress};
  }
}

void checkAddress(std::string_view data) {
  const Byte first = byteAt(data, 0);
  if (first != 0 && (first < 3 || first > 99)) throw Stop{badAddress};
  if (data.size() == 1) return;
  const Byte second = byteAt(data, 1);
  if (second > 99 || second == 2) throw Stop{badAddress};
}

void checkGroups(std::string_view data) {
  constexpr std::size_t groupSize = 16;
  constexpr std::size_t groups = 4;
  for (std::size_t start = 0; start < groups * groupSize; start += groupSize) {
    const Byte sub = byteAt(data, start + 1);
    if (!isGoodPair(byteAt(data, start), sub)) throw Stop{badAddress};
    if (sub > 3) throw Stop{badValue};
    if (byteAt(data, start + 2) > 21) throw Stop{badMode};
  }
}

/// A field that is to become a channel mask must hold one of its numbers: a choice of 1 to 4, or 0.
void checkSelections(const Subject& subject, std::string_view data) {
  for (const Byte position : positionsSent(subject, data.size())) {
    if (position <= data.size() && (byteAt(data, position - std::size_t{1}) & 15) > 4) throw Stop{badAddress};
  }
}

void checkFields(const RecordRow& row, const Subject& subject, Byte offset, std::string_view data) {
  // Where masks follow the first pair at once, they are no pairs: their translation checks them.
  const std::size_t pairs = hasMasks(row, offset) && !subject.known ? 1 : 4;
  switch (row.check) {
    case Check::none:
    case Check::length:
      break;
    case Check::selections:
      if (!isSentAsItIs(row, offset)) checkSelections(subject, data);
      break;
    case Check::address:
      return checkAddress(data);
    case Check::pairs4:
      return checkPairs(data, pairs);
    case Check::pair:
      return checkPairs(data, 1);
    case Check::groups:
      return checkGroups(data);
  }
}

bool accepts(const RecordRow& row, std::size_t size) {
  return size != 0 && std::ranges::find(row.writeLengths, size) != row.writeLengths.end();
}

}  // namespace

const RecordRow& rowFor(const Subject& subject, Byte offset) {
  const auto* const found =
      std::ranges::find_if(rows, [&, type = subject.type(), serial = subject.serial()](const RecordRow& row) {
        return row.type == type && row.serials.contains(serial) && offset >= row.fromOffset;
      });
  return found == rows.end() ? noRecord : *found;
}

const Series& seriesOf(const Subject& subject) {
  const auto* const found = std::ranges::find_if(
      series, [serial = subject.serial()](const Series& row) { return row.serials.contains(serial); });
  return found == series.end() ? ordinary : *found;
}

Byte readLength(const Subject& subject, Byte offset) {
  const RecordRow& row = rowFor(subject, offset);
  return subject.known ? row.readLengthKnown.value_or(row.readLength) : row.readLength;
}

bool writesLong(const Subject& subject, Byte offset) {
  return rowFor(subject, offset).traits.longWrite && !seriesOf(subject).pieceWrite && offset != 1;
}

void checkWrite(const Subject& subject, Byte offset, Bytes& data) {
  constexpr std::size_t shortOfOne = 16;
  const RecordRow& row = rowFor(subject, offset);
  if (row.check == Check::none) return;
  if (row.check == Check::pairs4 && data.size() == shortOfOne) data += '\x04';
  if (!accepts(row, data.size())) throw Stop{wrongLength};
  if (data.size() == pieceSize && offset > row.lastFullPiece) throw Stop{badOffset};
  checkFields(row, subject, offset, data);
}

}  // namespace velk::modules
