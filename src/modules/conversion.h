#pragma once

#include <string_view>
#include <vector>

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
Bytes ConvertTXData(std::string_view serialNumber, Bytes data, bool knownModel);

/// A record as the host sees it.
Bytes ConvertRXData(std::string_view serialNumber, Bytes data, bool knownModel);

/// The positions that `ConvertTXData` converts, and those that `ConvertRXData` does. Hosts and modules rely
/// on both as they are, and they are not mirror images of each other.
std::vector<Byte> positionsSent(std::string_view serialNumber, std::size_t size, bool knownModel);
std::vector<Byte> positionsReceived(std::string_view serialNumber, bool knownModel);

}  // namespace velk::modules
