#pragma once

#include <string>
#include <string_view>

#include "modules/identity.h"
#include "modules/mailbox.h"

namespace velk::modules {

/// The two bytes at the start of a firmware version as text: two digits each, without a separator.
std::string firmwareText(std::string_view version);

/// Reads a module's identification block into `identity`. Ends with the result byte or throws `Stop`.
Byte RXModuleVersie(const Mailbox& mailbox, std::string_view serialNumber, Identity& identity);

}  // namespace velk::modules
