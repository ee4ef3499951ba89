#pragma once

#include <string_view>

#include "modules/identity.h"
#include "modules/mailbox.h"

namespace velk::modules {

/// Reads a module's identification block into `identity`. Ends with the result byte or throws `Stop`.
Byte RXModuleVersie(const Mailbox& mailbox, std::string_view serialNumber, Identity& identity);

}  // namespace velk::modules
