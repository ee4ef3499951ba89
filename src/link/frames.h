#pragma once

#include <string_view>

#include "link/address.h"
#include "link/settings.h"
#include "values/bytes.h"

/// The bytes on the wire. Nothing here waits, sends or keeps state.
namespace velk::link {

/// Bits of the command byte, the first byte of every memory request. The low four hold the byte count
/// minus 1.
enum CommandBit : Byte {
  countMask = 15,
  shortReply = 16,    ///< the reply is a status alone, as for a write
  externalArea = 32,  ///< direction "V"
  write = 64,
  highBank = 128,
};

/// Instructions of fast-mode frames.
enum Instruction : Byte { shortRequest = 0, memoryAccess = 2 };

/// One memory request.
struct Request {
  Byte command;
  Byte high;  ///< address byte
  Byte low;   ///< address byte
  std::string_view data;
  Byte instruction = memoryAccess;  ///< of a fast-mode frame
};

/// The area that `ReadCom` and `WriteCom` reach with a byte count and a direction letter: only "V" means the
/// external ones, and counts of 128 and above the high bank.
constexpr Area areaOf(Byte count, std::string_view direction) {
  constexpr Byte lowestOfHighBank = 128;
  const bool isHigh = count >= lowestOfHighBank;
  if (direction == "V") return isHigh ? Area::highExternal : Area::external;
  return isHigh ? Area::highBlock : Area::block;
}

/// The area that a command byte selects.
constexpr Area areaOf(Byte command) {
  return areaOf(command & highBank, (command & externalArea) != 0 ? "V" : "H");
}

/// The command byte of a read. A count of 0 means 16 bytes, and counts above 16 wrap: 17 transfers 1 byte,
/// 128 and 144 transfer 16.
constexpr Byte commandByte(Byte count, Area area) {
  return static_cast<Byte>(((count - 1) & countMask) | (isHighBank(area) ? highBank : 0) |
                           (isExternal(area) ? externalArea : 0));
}

/// The request that reads `count` bytes.
constexpr Request readRequest(Byte count, Address at) {
  return {.command = commandByte(count, at.area), .high = at.high(), .low = at.low(), .data = {}};
}

/// The request that writes them. The length of `data` is not checked against `count`.
constexpr Request writeRequest(Byte count, Address at, std::string_view data) {
  const auto command = static_cast<Byte>(commandByte(count, at.area) | CommandBit::write);
  return {.command = command, .high = at.high(), .low = at.low(), .data = data};
}

/// The number of data bytes that a command byte asks for, 1 to 16.
constexpr std::size_t dataCount(Byte command) {
  return (command & std::size_t{countMask}) + 1;
}

/// Whether the reply to a command is a status alone.
constexpr bool hasShortReply(Byte command) {
  return (command & (CommandBit::write | CommandBit::shortReply)) != 0;
}

/// Echo mode: "*", command, address, data.
Bytes echoFrame(const Request& request);

/// Fast mode: "*", 2, bus address, command, address, data, "#"; or "*", instruction, data, "#".
Bytes fastFrame(const Request& request, Byte busAddress);

/// Ethernet interface of kind "Q": "/", bus address, command, address, data.
Bytes slashFrame(const Request& request, Byte busAddress);

/// The frame that the settings ask for.
Bytes frameFor(const Request& request, const Settings& settings);

/// The length that a reply on the serial line must have, in bytes.
std::size_t expectedReply(const Request& request, bool fastMode);

/// How many leading bytes of a fast-mode reply repeat those of the request.
constexpr std::size_t headerLength = 6;

/// Whether a fast-mode reply starts as the request does.
bool sameHeader(std::string_view frame, std::string_view reply);

}  // namespace velk::link
