#pragma once

#include <map>
#include <string>
#include <vector>

#include "parameters/layouts.h"

namespace velk::cli {

/// New characters for some items of a mode, by the items' numbers.
using Assignments = std::map<std::size_t, char>;

/// What was typed for items of a mode: "3=30" by an item's number, "18.low=2", "16:0=M" and "B3=7" by its
/// place, "item:4=1" and "place:4=1" where a number could be both. Throws std::invalid_argument with a sentence
/// that tells the items, or the range of one.
Assignments parseAssignments(const parameters::Layout& layout, const std::vector<std::string>& words);

}  // namespace velk::cli
