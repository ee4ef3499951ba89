#pragma once

#include "modules/module.h"

/// The two directions of `Module`.
namespace velk::modules {

void readModule(const Mailbox& mailbox, const ModuleAccess& access, const Identity& identity, Byte& result);
void writeModule(const Mailbox& mailbox, const ModuleAccess& access, const Identity& identity, Byte& result);

/// The serial number that stands for the controller's own module: without version, checks and polls.
constexpr std::string_view ownSerial = "000001";

}  // namespace velk::modules
