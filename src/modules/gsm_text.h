#pragma once

#include <string_view>

#include "modules/mailbox.h"

namespace velk::modules {

/// Reads or writes text record `number` of a GSM module. `result` is the code set last, also when a run-time
/// error ends the method; throws `Stop` for the codes that end it at once.
void GSMtext(const Mailbox& mailbox, std::string_view readOrWrite, std::string_view serialNumber, Byte number,
             Bytes& data, Byte& result);

}  // namespace velk::modules
