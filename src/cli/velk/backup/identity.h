#pragma once

#include <span>
#include <string>

#include "cli/house/backup_file.h"
#include "component/serial.h"

/// Which house lines are of: the names of its outputs tell, and where there are none the firmware words of the
/// initialisation block.
namespace velk::cli {

/// The bytes of the initialisation block that the controller keeps for itself.
std::span<const Address> firmwarePlaces();

/// Reads the lines that tell whether a controller is that of a backup: the initialisation block, and the names
/// of the outputs that have one there. Throws `Failure`.
Lines readIdentity(Serial& serial, const Lines& backup);

/// Why a controller looks like another house than a backup's, as a sentence; empty when it does not, or has
/// nothing to tell by, as a new one.
std::string strangenessOf(const Lines& backup, const Lines& here);

}  // namespace velk::cli
