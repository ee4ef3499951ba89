#pragma once

#include <array>
#include <optional>

#include "modules/mailbox.h"
#include "modules/model.h"
#include "values/bytes.h"

/// The records of modules: lengths, checks and special exchanges, as a table of types and one of series.
namespace velk::modules {

/// How the data of a write are checked beyond their length. A pair is an address and what belongs to it:
/// neither above 99, and the address from 3 on unless both are 0.
enum class Check : Byte {
  none,        ///< not even by it
  length,      ///< no field; what cannot become a mask is a run-time error
  selections,  ///< fields that are to become masks hold 0 to 4 (112)
  address,     ///< 0 or 3 to 99 and, but in a record of one byte, a second one up to 99 that is not 2 (112)
  pair,        ///< one pair (112)
  pairs4,      ///< four pairs (112)
  groups,      ///< four groups of 16 bytes: a pair (112), its second up to 3 (105), then up to 21 (111)
};

/// What is special about the records of a type.
struct Traits {
  bool masks = false;      ///< at `Offset` 1 they hold channel masks, which are translated
  bool version = false;    ///< at `Offset` 2 a version request comes before them
  bool firmware = false;   ///< its reply carries a firmware version
  bool asItIs = false;     ///< from `Offset` 2 on they are written as they are, without a translation
  bool longWrite = false;  ///< but at `Offset` 1 they are written through the long-record buffer
};

constexpr std::size_t mostLengths = 3;

/// One row: a type within a range of serial numbers and from an `Offset` on.
struct RecordRow {
  std::int16_t type;
  SerialRange serials;
  Byte readLength;                             ///< 0: none to read
  std::array<Byte, mostLengths> writeLengths;  ///< 0: unused
  Check check = Check::selections;
  Traits traits = {};
  Byte fromOffset = 0;
  std::optional<Byte> readLengthKnown = {};  ///< for known models, where it differs
  Byte lastFullPiece = 255;                  ///< writes of 16 bytes are taken up to this `Offset` only (103)
};

/// What a series of serial numbers does otherwise than others, whatever its type.
struct Series {
  SerialRange serials;
  bool readFlag = false;       ///< takes the flag as known models do
  bool longRead = false;       ///< its record is read through the long-record buffer
  bool pieceWrite = false;     ///< its record is written in pieces, though its type has `longWrite`
  Seconds betweenPieces{0.1};  ///< of a write: some store a piece slowly
};

/// The row for a module at an `Offset`; for a type without records one that reads and checks nothing.
const RecordRow& rowFor(const Subject& subject, Byte offset);

const Series& seriesOf(const Subject& subject);

constexpr bool hasMasks(const RecordRow& row, Byte offset) {
  return row.traits.masks && offset == 1;
}
constexpr bool asksVersion(const RecordRow& row, Byte offset) {
  return row.traits.version && offset == 2;
}
constexpr bool isSentAsItIs(const RecordRow& row, Byte offset) {
  return row.traits.asItIs && offset >= 2;
}

/// The length of the record to read.
Byte readLength(const Subject& subject, Byte offset);

/// Whether data are written through the long-record buffer instead of in pieces.
bool writesLong(const Subject& subject, Byte offset);

/// Checks the data of a write; throws `Stop` with 103, 104, 105, 111 or 112. May complete the data.
void checkWrite(const Subject& subject, Byte offset, Bytes& data);

}  // namespace velk::modules
