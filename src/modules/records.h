#pragma once

#include <array>

#include "modules/model.h"
#include "values/bytes.h"

/// The records of module types: lengths, checks and special exchanges, as one table.
namespace velk::modules {

/// How the data of a write are checked beyond their length.
enum class Check : Byte {
  none,        ///< not even by it
  length,      ///< type 4: no field; what cannot become a mask is a run-time error
  selections,  ///< fields that are to become masks hold 0 to 4 (112)
  address,     ///< type 0
  pairs4,      ///< type 1: four pairs of bytes
  pair,        ///< type 3: one pair of bytes
  groups,      ///< type 5: four groups of sixteen bytes
};

/// What is exchanged besides the pieces of the record.
enum class Special : Byte {
  none,
  versionFirst,       ///< at `Offset` 2 a version request comes before the record
  versionReplyFirst,  ///< the same, and its reply carries a firmware version
  masks,              ///< at `Offset` 1 the channel masks of the record are translated
  versionFirstAndMasks,
};

constexpr std::size_t mostLengths = 3;

/// One row: a type within a range of serial numbers and from an `Offset` on.
struct RecordRow {
  std::int16_t type;
  SerialRange serials;
  Byte readLength;
  std::array<Byte, mostLengths> writeLengths;  ///< 0: unused
  Check check = Check::selections;
  Special special = Special::none;
  Byte fromOffset = 0;
  Byte readLengthKnown = 0;  ///< for known models, where it differs
  Byte lastFullPiece = 255;  ///< writes of 16 bytes are taken up to this `Offset` only (103)
};

/// Whether the record of a row has channel masks at `Offset` 1, and whether a version request comes at 2.
constexpr bool hasMasks(const RecordRow& row, Byte offset) {
  return offset == 1 && (row.special == Special::masks || row.special == Special::versionFirstAndMasks);
}
constexpr bool asksVersion(const RecordRow& row, Byte offset) {
  return offset == 2 && row.special != Special::none && row.special != Special::masks;
}

/// The row for a module at an `Offset`; none for a type without records.
const RecordRow* rowFor(const Subject& subject, Byte offset);

/// The length of the record to read; 0 for a type without records.
Byte readLength(const Subject& subject, Byte offset);

/// Checks the data of a write; throws `Stop` with 103, 104, 105, 111 or 112. May complete the data.
void checkWrite(const Subject& subject, Byte offset, Bytes& data);

/// Modules whose data are written as they are, without a translation.
bool isSentAsItIs(const Subject& subject, Byte offset);

/// Modules whose record travels through the long-record buffer instead of in pieces.
bool readsLongRecord(const Subject& subject);
bool writesLongRecord(const Subject& subject, Byte offset, std::size_t size);

}  // namespace velk::modules
