#pragma once

#include "cli/shared/completion.h"

namespace velk::cli {

/// What can stand in a place of velk's command line, from one table for all shells: see `ValuesAt`.
std::optional<Candidates> valuesAt(const Place& place);

}  // namespace velk::cli
