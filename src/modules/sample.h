#pragma once

#include <string_view>

#include "modules/mailbox.h"

namespace velk::modules {

/// One sample, as `Sample` hands it in and out.
struct SampleAccess {
  std::string_view serialNumber;
  Byte number;
  Byte bank;
  Bytes& data;
};

/// Reads or writes one sample. Ends with the result byte or throws `Stop`.
Byte Sample(const Mailbox& mailbox, std::string_view readOrWrite, const SampleAccess& sample);

}  // namespace velk::modules
