#pragma once

#include "cli/velk/backup/difference.h"
#include "component/serial.h"

namespace velk::cli {

/// The controller's configuration now, with the modules that a backup names: of both what the sections ask
/// for, and nothing else is read. `read` are lines that were read before. Throws `Failure`.
Backup readLike(Serial& serial, const Backup& backup, const Sections& sections, Lines read = {});

}  // namespace velk::cli
