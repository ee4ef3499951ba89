#pragma once

#include "cli/velk/backup/difference.h"
#include "component/serial.h"

namespace velk::cli {

/// The controller's configuration now, with the modules that a backup names: of both what the sections ask
/// for, and nothing else is read. Throws `Failure`.
Backup readLike(Serial& serial, const Backup& backup, const Sections& sections);

}  // namespace velk::cli
