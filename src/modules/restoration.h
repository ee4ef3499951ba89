#pragma once

#include <string>

#include "modules/records.h"
#include "values/bytes.h"

namespace velk::modules {

/// How a module gets a record back that was read from it.
struct Restoration {
  Bytes data;            ///< what `Module` has to write for the module to read as before
  std::string obstacle;  ///< why there are no such data; empty when there are
};

/// The number of requests that a read of a record from its start takes.
int piecesToRead(const Subject& subject);

/// Whether a record that was read from its start came whole, as far as its length tells.
bool isWhole(const Subject& subject, const Bytes& record);

/// Undoes the translation of a record that `Module` read, from `Offset` 0 on, and checks that the data found
/// are taken by a write and read back the same. Some types read what they cannot write: another length, or
/// fields of which reading does not tell all bits.
Restoration restorationOf(const Subject& subject, const Bytes& record);

}  // namespace velk::modules
