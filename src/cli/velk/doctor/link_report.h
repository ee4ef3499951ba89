#pragma once

#include "cli/velk/connection/connection.h"

namespace velk::cli {

/// Checks a link step by step, from the device or the host's name to the controller's clock, and prints what
/// each comes to and what to do; ends behind the first that is wrong. Returns the exit status.
int reportLink(const LinkOptions& link, bool json);

}  // namespace velk::cli
