#pragma once

#include <string>
#include <vector>

#include "cli/velk/backup/difference.h"
#include "cli/velk/trace/trace_file.h"
#include "component/serial.h"

namespace velk::cli {

/// What the writes of a trace would come to in a controller.
struct PlannedWrites {
  std::vector<Difference> differences;  ///< things that would change
  std::vector<std::string> others;      ///< requests to modules, and writes to places that are no things
};

/// Reads the things that the writes reach. Throws `Failure`.
PlannedWrites planWrites(Serial& serial, const std::vector<TraceLine>& requests);

/// Why a controller looks like another house than the one that a trace was made of; empty when it does not, or
/// the trace tells nothing of its house. The names of outputs and the firmware words tell, where the trace has
/// read them, else all the configuration that it has read; what it has written may stand there as well. Throws
/// `Failure`.
std::string strangenessOf(Serial& serial, const std::vector<TraceLine>& requests);

/// Whether the controller, or a module, changes a byte by itself.
bool isVolatile(Address at);

}  // namespace velk::cli
