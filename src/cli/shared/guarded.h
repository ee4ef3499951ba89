#pragma once

#include <functional>
#include <string_view>
#include <variant>

#include "cli/shared/failure.h"

namespace velk::cli {

/// Whether a command line has the option `--json`, also one that is wrong elsewhere.
bool asksForJson(int argc, char** argv);

/// What `carryOut` returns, or why it has failed: whatever it throws.
std::variant<int, Failure> outcomeOf(const std::function<int()>& carryOut);

/// Carries a program out and turns whatever it throws into an exit status and a sentence on standard error, or
/// JSON: see `tell`.
/// That standard output took not everything is told too, and is `badFile` when there was no other error.
int guarded(std::string_view program, const std::function<int()>& carryOut, bool asJson = false);

}  // namespace velk::cli
