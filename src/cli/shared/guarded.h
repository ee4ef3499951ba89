#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "cli/shared/failure.h"

namespace velk::cli {

/// Whether the words of a command line have the option `--json`, also where they are wrong.
bool asksForJson(const std::vector<std::string>& words);

/// What `carryOut` returns, or why it has failed: whatever it throws.
std::variant<int, Failure> outcomeOf(const std::function<int()>& carryOut);

/// Why standard output cannot be written, now or before.
std::optional<Failure> failureOfOutput();

/// Carries a program out and turns whatever it throws into an exit status and a sentence on standard error, or
/// JSON: see `tell`.
/// That standard output took not everything is told too, and is `badFile` when there was no other error.
int guarded(std::string_view program, const std::function<int()>& carryOut, bool asJson = false);

}  // namespace velk::cli
