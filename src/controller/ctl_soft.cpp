#include "controller/ctl_soft.h"

#include "link/selector.h"
#include "values/bits.h"
#include "values/result.h"

namespace velk::controller {
namespace {

using link::Memory;
using link::Stop;

constexpr Byte lowestGroup = 129;
constexpr Byte lowestParametrisedInput = 101;

Byte highFlankBit(const SoftLinkAccess& link) {
  return static_cast<Byte>(1 << (link.sub + 4));
}

Byte lowFlankBit(const SoftLinkAccess& link) {
  return static_cast<Byte>(1 << link.sub);
}

void read(const Memory& memory, const SoftLinkAccess& link) {
  constexpr Byte outputBit = 128;
  const Bytes record = memory.read(2, linkRecord(link.source, link.sub));
  const Byte first = byteAt(record, 0);
  // An input link reads back as nothing, whatever it was written with.
  const bool isOutput = first >= outputBit;
  link.kind = isOutput ? "O" : "I";
  link.destination = isOutput ? static_cast<Byte>(first & 127) : Byte{0};
  const Byte second = isOutput ? byteAt(record, 1) : Byte{0};
  link.parameters1 = second / 16;
  link.parameters2 = second & 15;
  if (!isOutput) return;
  const Byte flanks = byteAt(memory.read(1, flanksOf(link.source)), 0);
  link.highFlank = (flanks & highFlankBit(link)) != 0;
  link.lowFlank = (flanks & lowFlankBit(link)) != 0;
}

void writeRecord(const Memory& memory, const SoftLinkAccess& link, int first, int second) {
  memory.write(linkRecord(link.source, link.sub),
               Bytes{character(checkedByte(first)), character(checkedByte(second))});
}

void writeFlanks(const Memory& memory, const SoftLinkAccess& link) {
  int flanks = byteAt(memory.read(1, flanksOf(link.source)), 0);
  flanks &= ~(highFlankBit(link) | lowFlankBit(link));
  if (link.highFlank) flanks |= highFlankBit(link);
  if (link.lowFlank) flanks |= lowFlankBit(link);
  memory.write(flanksOf(link.source), Bytes(1, character(flanks)));
}

void writeOutputLink(const Memory& memory, const SoftLinkAccess& link) {
  if (link.destination == 0) {
    writeRecord(memory, link, 0, 0);
    return;
  }
  if (link.destination < lowestGroup) {
    // Destination 128 does not fit: a run-time error, not a wrap.
    writeRecord(memory, link, link.destination + 128, (link.parameters1 & 15) * 16 + (link.parameters2 & 15));
  } else {
    writeRecord(memory, link, link.destination, link.parameters1 + (link.parameters2 != 0 ? 192 : 128));
  }
  writeFlanks(memory, link);
}

void writeInputLink(const Memory& memory, const SoftLinkAccess& link) {
  const bool hasParameters = link.destination >= lowestParametrisedInput;
  writeRecord(memory, link, link.destination, hasParameters ? link.parameters2 & 15 : 0);
}

void write(const Memory& memory, const SoftLinkAccess& link) {
  if (std::string_view("IO").find(link.kind) == std::string_view::npos) throw Stop{badLinkKind};
  const bool toItself = link.kind == "O" && link.destination == link.source;
  if (toItself && testBit(link.parameters1, link.sub)) throw Stop{badAddress};
  if (link.kind == "I") {
    writeInputLink(memory, link);
  } else {
    writeOutputLink(memory, link);
  }
}

}  // namespace

void Ctl_Soft(const Memory& memory, std::string_view readOrWrite, const SoftLinkAccess& link) {
  const bool reads = link::isRead(readOrWrite);
  if (link.source == 1 || link.source == 2 || link.source == 100 || link.source > 124) throw Stop{badAddress};
  if (link.sub > 3) throw Stop{badSubAddress};
  if (reads) {
    read(memory, link);
  } else {
    write(memory, link);
  }
}

}  // namespace velk::controller
