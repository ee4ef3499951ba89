#pragma once

#include <string>
#include <vector>

#include "cli/velk/report/lanes.h"

namespace velk::cli {

/// The week for a terminal of so many columns (40 to 200 count): a lane for all that is switched, a line for
/// days that are the same. With colours switch times are upper half blocks and events lower ones; without, "#"
/// and ".", "*" for both.
std::string textOf(const std::vector<Lane>& lanes, int width, bool colours);

}  // namespace velk::cli
