#pragma once

#include <string_view>

#include "link/settings.h"
#include "values/bytes.h"

/// The bytes on the wire. Nothing here waits, sends or keeps state.
namespace velk::link {

/// Bits of the command byte, the first byte of every memory request. The low four bits hold the byte count
/// minus 1.
enum CommandBit : Byte {
  countMask = 15,
  shortReply = 16,    ///< the reply is a status alone, as for a write
  externalArea = 32,  ///< direction "V"
  write = 64,
  highBank = 128,  ///< byte counts of 128 and above
};

/// Instructions of fast-mode frames.
enum Instruction : Byte { shortRequest = 0, memoryAccess = 2 };

/// One memory request.
struct Request {
  Byte command;
  Byte dph;  ///< high address byte
  Byte dpl;  ///< low address byte
  std::string_view data;
  Byte instruction = memoryAccess;  ///< of a fast-mode frame
};

/// The command byte for a byte count and a direction letter. Only "V" reaches the external area; a count of 0
/// means 16 bytes, and counts above 16 wrap, so that 17 transfers 1 byte and 144 transfers 16 in the high
/// bank.
Byte commandByte(Byte count, std::string_view direction, bool isWrite);

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
