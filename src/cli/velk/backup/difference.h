#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "cli/house/backup_file.h"
#include "cli/velk/things/details.h"

namespace velk::cli {

/// Names of sections; empty for all.
using Sections = std::set<std::string, std::less<>>;

/// Throws std::invalid_argument with a sentence for a name that is no section.
Sections parseSections(const std::vector<std::string>& names);

bool isSelected(const Sections& sections, std::string_view name);

/// A thing that differs.
struct Difference {
  std::string title;               ///< "output 5"
  std::vector<Address> addresses;  ///< the bytes that differ; none for a module
  Changes changes;                 ///< in words
};

/// What differs between two memories, and between the modules that both name.
std::vector<Difference> compare(const Backup& from, const Backup& to, const Sections& sections);

/// "output 5: mode T1 -> DI, item 3 (19) 30 -> 5", one line each.
std::string textOf(const Difference& difference);

Json jsonOf(const std::vector<Difference>& differences);

}  // namespace velk::cli
