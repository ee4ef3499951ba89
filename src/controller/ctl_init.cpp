#include "controller/ctl_init.h"

#include <algorithm>
#include <array>

#include "link/selector.h"
#include "values/numbers.h"
#include "values/result.h"

namespace velk::controller {
namespace {

using link::Address;
using link::Memory;
using link::Stop;

constexpr int blockSize = 16;

// Positions of the block, counted from 1.
constexpr int year = 7;
constexpr int month = 8;
constexpr int day = 9;
constexpr int seconds = 13;
constexpr int settings = 3;  ///< the positions 1 to 3 are settings that can be written
constexpr int kind = 6;

constexpr Address readSettings{.page = 0x00, .offset = 0x02};
constexpr Address furtherBytes{.page = 0x02, .offset = 0x08};

struct Bounds {
  Byte low = 0;
  Byte high = 255;
};

/// What the positions up to the clock's last may be written as; the others take any byte. The day has one
/// more rule, `lastDay`.
constexpr std::array<Bounds, seconds> bounds{
    {{10, 99}, {104, 128}, {}, {}, {}, {}, {0, 99}, {1, 12}, {1, 255}, {0, 7}, {0, 23}, {0, 59}, {0, 59}}};

/// The part of the block that a call names: the positions from `offset` + 1 to `end`, and their bytes.
struct Part {
  const Bytes& bytes;
  int offset;
  int end;

  /// The byte of a position; run-time error 5 for one outside the part.
  [[nodiscard]] Byte at(int position) const {
    return byteAt(bytes, static_cast<std::size_t>(position - offset - 1));
  }
};

/// The last day of the month that a write names. A month outside 1 to 12, which fails itself, bounds no day.
int lastDay(const Part& part) {
  constexpr std::array days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const Byte m = part.at(month);
  if (m < 1 || m > 12) return 255;
  // Only February asks for the year, which is a run-time error when the part begins behind it.
  const bool leapDay = m == 2 && part.at(year) % 4 == 0;
  return days.at(m - 1U) + (leapDay ? 1 : 0);
}

void checkWrite(const Part& part) {
  for (int p = part.offset + 1; p <= std::min(part.end, seconds); ++p) {
    const auto [low, high] = bounds.at(static_cast<std::size_t>(p - 1));
    const int value = part.at(p);
    if ((p == day && value > lastDay(part)) || value < low || value > high) throw Stop{badValue};
  }
}

void writeClock(const Memory& memory, const Bytes& parameters) {
  constexpr std::size_t clockSize = 7;
  const auto set = [&](Address at, int value) { memory.write(at, Bytes(1, character(value))); };
  set(clockHold, 255);
  set(clockHold.next(), 255);
  // The last seven characters, not positions 7 to 13: a part that ends behind position 13 sets the clock from
  // its own end, and one of six characters is a run-time error with the clock held. Hosts know the block so.
  Bytes clock;
  for (std::size_t i = 1; i <= clockSize; ++i)
    clock += character(toBcd(byteAt(parameters, parameters.size() - i)));
  memory.write(clockSeconds, clock);
  set(clockHold.next(), 0);
  set(clockHold, 0);
}

Byte write(const Memory& memory, const Part& part) {
  const bool hasClock = part.end >= year;
  const bool hasWholeClock = part.offset < month && part.end >= seconds;
  if (part.bytes.size() != static_cast<std::size_t>(part.end - part.offset)) throw Stop{wrongLength};
  if (hasClock && !hasWholeClock) throw Stop{wrongLength};
  checkWrite(part);

  const Bytes head = part.bytes.substr(0, static_cast<std::size_t>(std::max(0, settings - part.offset)));
  // No settings, no transaction: a count of 0 would not mean none on the wire.
  if (!head.empty()) memory.write(firstSetting.next(static_cast<std::size_t>(part.offset)), head);
  if (hasClock) writeClock(memory, part.bytes);
  return head.empty() && !hasClock ? nothingDone : success;
}

/// Position 6, derived from the bytes at 0x0002 to 0x0008.
Byte kindValue(const Bytes& bytes) {
  const Byte a = byteAt(bytes, 5);
  const Byte b = byteAt(bytes, 6);
  if (a == 0) return 0;
  // Kind 1 would need `a` to be 0 and 1 at once; it never comes out.
  return a < 9 || (a == 9 && b < 14) ? Byte{2} : byteAt(bytes, 0);
}

/// The positions up to 6 that a call names.
Bytes readHead(const Memory& memory, int offset, int end) {
  const Bytes bytes = memory.read(7, readSettings);
  // Found out before it is known to be wanted: a reply without the bytes for it is a run-time error.
  const Byte kindFound = kindValue(bytes);
  Bytes head;
  for (int p = offset + 1; p <= std::min(end, kind - 1); ++p)
    head += character(byteAt(bytes, static_cast<std::size_t>(p) + 1));
  if (end >= kind) head += character(kindFound);
  return head;
}

/// Where a position of the clock lies: they run against its addresses.
Address clockAt(int position) {
  return {.page = clockSeconds.page, .offset = static_cast<Byte>(clockSeconds.offset + seconds - position)};
}

/// The clock's positions that a call names. Those behind position 13 lie below the clock: its hold bytes are
/// taken for clock values.
Bytes readClock(const Memory& memory, Byte count, int end) {
  const Byte size = std::min(static_cast<Byte>(end - kind), count);
  const Bytes bytes = memory.read(size, clockAt(end));
  Bytes clock;
  std::transform(bytes.rbegin(), bytes.rend(), std::back_inserter(clock),
                 [](char bcd) { return character(decimalOfBcd(byteValue(bcd))); });
  return clock;
}

Byte read(const Memory& memory, Bytes& parameters, Byte count, int offset) {
  const int end = offset + count;
  Byte result = nothingDone;
  Bytes collected;
  const auto collect = [&](const Bytes& bytes) {
    collected += bytes;
    parameters = collected;
    result = success;
  };
  if (offset < kind) collect(readHead(memory, offset, end));
  if (end >= year && offset < seconds) collect(readClock(memory, count, end));
  // Three further bytes follow whenever position 13 is reached, so that positions 1 to 13 read as 16 bytes.
  if (end >= seconds) collect(memory.read(3, furtherBytes));
  return result;
}

}  // namespace

Byte Ctl_Init(const Memory& memory, std::string_view readOrWrite, Bytes& parameters, Byte count,
              Byte offset) {
  const bool reads = link::isRead(readOrWrite);
  if (offset > seconds) throw Stop{badOffset};
  if (offset + count > blockSize) throw Stop{countTooLarge};
  if (reads) return read(memory, parameters, count, offset);
  return write(memory, {.bytes = parameters, .offset = offset, .end = offset + count});
}

}  // namespace velk::controller
