#pragma once

#include "cli/backup/difference.h"

namespace velk::cli {

/// The controller's configuration now, with the modules that a backup names, as far as the sections ask for
/// them. Throws `Failure`.
Backup readLike(Serial& serial, const Backup& backup, const Sections& sections);

}  // namespace velk::cli
