#include "modules/restoration.h"

#include <algorithm>
#include <optional>

#include "link/memory.h"
#include "modules/conversion.h"
#include "modules/mailbox.h"
#include "modules/translation.h"
#include "values/result.h"
#include "values/runtime_error.h"

namespace velk::modules {
namespace {

constexpr const char* longOnly = "a long record can be read but not written";
constexpr const char* incomplete = "the record did not come whole";
constexpr const char* lostBits = "its selections do not read as they are written";
constexpr const char* noSelection = "it holds a selection that no write gives";

/// Records of known models begin behind a leading piece.
Byte startOf(const Subject& subject) {
  return subject.known ? 1 : 0;
}

bool holds(Positions positions, Byte position) {
  return std::ranges::find(positions, position) != positions.end();
}

/// The selection that gives a field: one that is found where it becomes a mask, and reads back so or, where a
/// reading leaves the mask, is that mask.
std::optional<char> selectionFor(char field, bool isTranslatedBack) {
  for (char selection = 0; selection <= 4; ++selection) {
    const Bytes mask = ConvertTXSub(Bytes(1, selection), 1);
    const Bytes found = isTranslatedBack ? ConvertRXSub(mask, 1) : mask;
    if (found.front() == field) return selection;
  }
  return std::nullopt;
}

/// A reading leaves a record as it came that is too short for its fields.
bool isTranslated(const Bytes& record, Positions received) {
  return std::ranges::all_of(received, [&](Byte position) { return position <= record.size(); });
}

/// Turns each field that a write makes a mask of into the number for it. A field that is translated only when
/// it is read cannot be undone, as its high four bits are not in the record; since no number is its own
/// reading, the check of the whole finds it.
Restoration undone(const Subject& subject, const Bytes& record) {
  Positions received = positionsReceived(subject);
  if (!isTranslated(record, received)) received = {};
  Bytes data = record;
  for (const Byte position : positionsSent(subject, record.size())) {
    if (position > record.size()) continue;  // found there too
    char& field = data[position - std::size_t{1}];
    const auto selection = selectionFor(field, holds(received, position));
    if (!selection) return {.data = {}, .obstacle = noSelection};
    field = *selection;
  }
  return {.data = data, .obstacle = {}};
}

/// What a reading gives behind a write of `data`.
Bytes readBehind(const Subject& subject, const Bytes& data, std::size_t size) {
  const Byte offset = startOf(subject);
  Bytes record(slice(translatedForWrite(subject, offset, data), 0, size));
  try {
    translateRead(subject, offset, record);
  } catch (const RuntimeError&) {  // NOLINT(bugprone-empty-catch): the record stays as it is, as in `Module`
  }
  return record;
}

std::string refusedWith(Result code) {
  if (code == wrongLength) return "a record of this type is not written in the length in which it is read";
  return "a write of it is refused with " + std::to_string(code);
}

}  // namespace

int piecesToRead(const Subject& subject) {
  if (seriesOf(subject).longRead) return 1;
  return (readLength(subject, startOf(subject)) + pieceSize - 1) / pieceSize;
}

bool isWhole(const Subject& subject, const Bytes& record) {
  if (seriesOf(subject).longRead) return !record.empty();
  return record.size() == readLength(subject, startOf(subject));
}

Restoration restorationOf(const Subject& subject, const Bytes& record) {
  if (seriesOf(subject).longRead) return {.data = {}, .obstacle = longOnly};
  if (!isWhole(subject, record)) return {.data = {}, .obstacle = incomplete};
  Restoration found = undone(subject, record);
  if (!found.obstacle.empty()) return found;
  try {
    if (readBehind(subject, found.data, record.size()) != record) found.obstacle = lostBits;
  } catch (const link::Stop& stop) {
    found.obstacle = refusedWith(stop.result);
  } catch (const RuntimeError&) {
    found.obstacle = refusedWith(nothingDone);
  }
  return found;
}

}  // namespace velk::modules
