#pragma once

#include "modules/module.h"

namespace velk::modules {

/// `Module` when it writes, behind the questions who the module is.
void writeModule(const Mailbox& mailbox, const ModuleAccess& access, const Identity& identity, Byte& result);

}  // namespace velk::modules
