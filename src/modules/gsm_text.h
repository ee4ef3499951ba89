#pragma once

#include <string_view>

#include "modules/mailbox.h"

namespace velk::modules {

/// Reads or writes text record `number` of a GSM module. Ends with the result byte or throws `Stop`.
Byte GSMtext(const Mailbox& mailbox, std::string_view readOrWrite, std::string_view serieNr, Byte number,
             Bytes& data);

}  // namespace velk::modules
