#pragma once

#include "values/bytes.h"

namespace velk::modules {

/// The eight channel masks in a record at `Offset` 1, as the codes that hosts use. The masks stand at
/// positions 3 to 10, for a known model at 9 to 16. Throws `Stop{badValue}` for a byte that is no mask, or no
/// code.
Bytes codesOfMasks(Bytes data, bool knownModel);
Bytes masksOfCodes(Bytes data, bool knownModel);

}  // namespace velk::modules
