#pragma once

#include <map>
#include <string>

#include "cli/house/backup_file.h"
#include "component/serial.h"

/// Modules on their way back: `Module` does not write everything as it reads it.
namespace velk::cli {

/// Tells on standard error of a module that is saved but cannot be restored.
void tellObstacle(const Module& module);

/// Titles of the modules that a restoration has to leave out, each with its reason. `now` is what the bus
/// holds: just the modules that were read from there count.
using LeftOut = std::map<std::string, std::string, std::less<>>;
LeftOut leftOut(const Backup& backup, const Backup& now);

/// Writes what makes a module read as its backup does, and reads it back. Throws `Failure`.
void restoreModule(Serial& serial, const Module& module);

}  // namespace velk::cli
