#pragma once

#include "modules/records.h"
#include "values/bytes.h"

/// Records between what hosts see and what modules hold.
namespace velk::modules {

/// Turns what came from a module into what the host sees, in `data` itself. Run-time error 5 for a record too
/// short for its fields, `Stop{badValue}` for a byte that is no mask: what was translated before them stays.
void translateRead(const Subject& subject, Byte offset, Bytes& data);

/// Checks what a host writes and returns what goes to the module. Throws as `checkWrite` does,
/// `Stop{badValue}` for a code that is no mask, and run-time errors for fields that cannot become masks.
Bytes translatedForWrite(const Subject& subject, Byte offset, Bytes data);

}  // namespace velk::modules
