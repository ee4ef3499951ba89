#pragma once

#include "cli/shared/json.h"
#include "cli/sim/served_house.h"

/// The house as the page shows it.
namespace velk::cli::web {

/// Outputs, presets, texts and modules, without those that are not in use.
Json jsonOf(const ServedHouse::State& state);

/// The lines of 16 bytes of all areas that are not all zero: {"V": {"0510": "05..."}, "H": ...}.
Json linesOf(const simulator::Store& store);

/// Likewise those that differ.
Json changedLines(const simulator::Store& before, const simulator::Store& now);

/// What lies in the memory, by things, with the runs of bytes of each: page, offset, how many.
Json jsonOfThings();

}  // namespace velk::cli::web
