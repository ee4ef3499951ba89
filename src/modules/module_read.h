#pragma once

#include "modules/module.h"

namespace velk::modules {

/// `Module` when it reads, behind the questions who the module is.
void readModule(const Mailbox& mailbox, const ModuleAccess& access, const Identity& identity, Byte& result);

}  // namespace velk::modules
