#pragma once

#include <span>

#include "modules/model.h"
#include "values/bytes.h"

/// Selection fields of module records: plain numbers 1 to 4 for hosts, channel masks on the bus.
namespace velk::modules {

/// `data` with the number at `position` (from 1) turned into a mask: in each nibble one bit cleared. Only the
/// low nibble counts. 1 to 4 give 238, 221, 187, 119 and 0 gives 246; run-time error 6 from 5 on, 5 for a
/// position outside the data.
Bytes ConvertTXSub(Bytes data, Byte position);

/// `data` with the mask at `position` turned into a number: the inverse for 1 to 4 only.
Bytes ConvertRXSub(Bytes data, Byte position);

/// A record as it is sent to the module.
Bytes ConvertTXData(const Subject& subject, Bytes data);

/// A record as the host sees it.
Bytes ConvertRXData(const Subject& subject, Bytes data);

/// Positions in a record, from 1.
using Positions = std::span<const Byte>;

/// The positions that `ConvertTXData` converts, and those that `ConvertRXData` does.
Positions positionsSent(const Subject& subject, std::size_t size);
Positions positionsReceived(const Subject& subject);

}  // namespace velk::modules
