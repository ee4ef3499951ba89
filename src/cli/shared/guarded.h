#pragma once

#include <functional>
#include <string_view>

namespace velk::cli {

/// Carries a program out and turns whatever it throws into a sentence on standard error and an exit status.
/// That standard output took not everything is told too, and is `badFile` when there was no other error.
int guarded(std::string_view program, const std::function<int()>& carryOut);

}  // namespace velk::cli
