#include "timed/switch_time.h"

#include "values/numbers.h"
#include "values/result.h"
#include "values/runtime_error.h"

namespace velk::timed {
namespace {

using link::Address;
using link::Memory;
using link::Stop;

constexpr Byte actionFlag = 128;  ///< in the day byte: the block holds one two-byte action
constexpr Byte dayMask = 127;
constexpr Byte lowestAction = 101;
constexpr Byte highestAction = 124;
constexpr Byte lowestEntry = 3;
constexpr Byte transferSize = 15;
constexpr std::size_t entrySize = 3;

/// The place `offset` bytes into the block; run-time error 6 when it lies outside the pages or the page.
Address placeIn(const SwitchTimeAccess& access, std::size_t offset) {
  if (access.block > lastSwitchTime) throw RuntimeError(RuntimeError::overflow);
  Address at = switchTimeBlock(access.block);
  at.offset = checkedByte(at.offset + static_cast<long>(offset));
  return at;
}

Bytes header(const SwitchTimeAccess& access, int days) {
  return {character(days), character(toBcd(access.minute % 60)), character(toBcd(access.hour % hoursOfDay))};
}

void writeAction(const Memory& memory, const SwitchTimeAccess& access) {
  if (access.data.size() != 2) throw Stop{wrongLength};
  const Byte first = byteAt(access.data, 0);
  const Byte second = byteAt(access.data, 1);
  if (first < lowestAction || first > highestAction || second < 1 || second > 4) throw Stop{badValue};
  memory.write(placeIn(access, 0),
               header(access, (access.days & dayMask) + actionFlag) + access.data + Bytes(2, '\0'));
}

void writeList(const Memory& memory, const SwitchTimeAccess& access) {
  const Bytes& data = access.data;
  if (data.size() % entrySize != 0) throw Stop{wrongLength};
  Bytes pending = header(access, access.days & dayMask);
  std::size_t offset = 0;
  for (std::size_t next = 0; next < data.size();) {
    if (byteAt(data, next) < lowestEntry) throw Stop{badValue};
    pending += slice(data, next, entrySize);
    next += entrySize;
    if (pending.size() < transferSize) continue;
    memory.write(placeIn(access, offset), pending);
    pending.clear();
    offset = next + entrySize;  // the header takes as much as an entry
  }
  memory.write(placeIn(access, offset), pending + '\0');
}

void write(const Memory& memory, const SwitchTimeAccess& access) {
  if (access.days == 0 && access.minute == 0 && access.hour == 0) {
    memory.write(placeIn(access, 0), Bytes(4, '\0'));
  } else if ((access.days & dayMask) == 0 || access.data.empty()) {
    // The day byte is 128 here whatever `days` holds, also when only the data are empty: that is what
    // controllers take for a block with a time and nothing to switch.
    memory.write(placeIn(access, 0), header(access, actionFlag) + '\0');
  } else if (byteAt(access.data, 0) >= lowestAction - 1) {
    writeAction(memory, access);
  } else {
    writeList(memory, access);
  }
}

/// Appends the entries of a part of the list; true when the list ends in it.
bool appendEntries(std::string_view part, Bytes& data) {
  for (std::size_t i = 0; i + 1 < part.size(); i += entrySize) {
    const Byte first = byteAt(part, i);
    if (first == 0) return true;
    const bool action = first >= lowestAction;
    data += slice(part, i, action ? 2 : entrySize);
    if (action) return true;
  }
  return false;
}

void read(const Memory& memory, const SwitchTimeAccess& access) {
  access.data.clear();
  const Bytes first = memory.read(transferSize, placeIn(access, 0));
  access.days = byteAt(first, 0) & dayMask;
  access.hour = decimalOfBcd(byteAt(first, 2));
  access.minute = decimalOfBcd(byteAt(first, 1));
  bool ended = appendEntries(slice(first, 3), access.data);
  // A list that does not end runs out of the page: a run-time error, with what was read until then.
  for (std::size_t offset = transferSize; !ended; offset += transferSize) {
    ended = appendEntries(memory.read(transferSize, placeIn(access, offset)), access.data);
  }
}

}  // namespace

void SwitchTime(const Memory& memory, std::string_view readOrWrite, const SwitchTimeAccess& access) {
  if (readOrWrite == "R") {
    read(memory, access);
  } else {
    write(memory, access);
  }
}

}  // namespace velk::timed
