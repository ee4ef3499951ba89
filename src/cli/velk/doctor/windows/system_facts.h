#pragma once

#include <string>
#include <utility>
#include <vector>

namespace velk::cli {

/// What tells one Windows from another: name and text.
std::vector<std::pair<std::string, std::string>> systemFacts();

/// Whether this is Wine, and no Windows.
bool isWine();

/// Whether this program has an administrator's rights.
bool isAdministrator();

}  // namespace velk::cli
