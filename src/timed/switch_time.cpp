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
constexpr std::size_t headerSize = 3;
constexpr std::size_t entrySize = 3;

/// The place `offset` bytes into the block; run-time error 6 when it lies outside the pages or the page.
Address placeIn(const SwitchTimeAccess& access, std::size_t offset) {
  if (access.block > lastSwitchTime) throw RuntimeError(RuntimeError::overflow);
  Address at = switchTimeBlock(access.block);
  at.offset = checkedByte(at.offset + static_cast<long>(offset));
  return at;
}

Bytes header(const SwitchTimeAccess& access, int days) {
  return {character(days), character(toBcd(access.minute % 60)),
          character(toBcd(static_cast<Byte>(access.hour % hoursOfDay)))};
}

void writeAction(const Memory& memory, const SwitchTimeAccess& access) {
  if (access.data.size() != 2) throw Stop{wrongLength};
  const Byte first = byteAt(access.data, 0);
  const Byte second = byteAt(access.data, 1);
  if (first < lowestAction || first > highestAction || second < 1 || second > 4) throw Stop{badValue};
  memory.write(placeIn(access, 0),
               header(access, (access.days & dayMask) + actionFlag) + access.data + Bytes(2, '\0'));
}

/// A byte alone, behind the last entry, is the end mark.
void checkEntries(std::string_view part) {
  for (std::size_t i = 0; i + 1 < part.size(); i += entrySize) {
    if (byteAt(part, i) < lowestEntry) throw Stop{badValue};
  }
}

/// Each transfer is checked when its turn comes: those before a bad entry are made.
void writeList(const Memory& memory, const SwitchTimeAccess& access) {
  if (access.data.size() % entrySize != 0) throw Stop{wrongLength};
  const Bytes list = header(access, access.days & dayMask) + access.data + '\0';
  for (std::size_t offset = 0; offset < list.size(); offset += transferSize) {
    const std::string_view part = slice(list, offset, transferSize);
    checkEntries(slice(part, offset == 0 ? headerSize : 0));
    memory.write(placeIn(access, offset), part);
  }
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
  Bytes part(slice(first, headerSize));
  // A list that does not end runs out of the page: a run-time error, with what was read until then.
  for (std::size_t offset = transferSize; !appendEntries(part, access.data); offset += transferSize) {
    part = memory.read(transferSize, placeIn(access, offset));
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
