#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velk::cli {

/// The shells that there are scripts for.
std::vector<std::string> shells();

/// The script of one of them. It hands the words to "velk complete" and shows what comes back.
std::string_view completionScript(std::string_view shell);

}  // namespace velk::cli
