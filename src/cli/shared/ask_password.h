#pragma once

#include <string>

namespace velk::cli {

/// Asks a person, who sits at standard input, on standard error; what is typed is not shown. Throws `Failure`
/// with `interrupted` on Ctrl-C.
std::string askPassword(const std::string& question);

}  // namespace velk::cli
