#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/velk/report/lanes.h"

namespace velk::cli {

/// The week for a terminal of so many columns (40 to 200 count): a lane for all that is switched, a line for
/// days that are the same. Switch times are upper half blocks and events lower ones, coloured; without them
/// "#" and ".", "*" for both.
std::string textOf(const std::vector<Lane>& lanes, int width, bool halfBlocks);

/// What happens when, a line each, with the same signs; lines are as wide, too.
std::string textOf(const std::vector<Mark>& marks, int width, bool halfBlocks);

}  // namespace velk::cli
