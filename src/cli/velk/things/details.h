#pragma once

#include <string>
#include <vector>

#include "cli/shared/json.h"

namespace velk::cli {

/// One detail of a thing, as people read it.
struct Detail {
  std::string name;
  std::string text;

  friend bool operator==(const Detail&, const Detail&) = default;
};

using Details = std::vector<Detail>;

/// A detail that differs.
struct ChangedDetail {
  std::string name;
  std::string from;
  std::string to;
};

using Changes = std::vector<ChangedDetail>;

/// What differs between a thing's details, but for the items of different modes, which have nothing to do with
/// each other.
Changes changesOf(Details from, Details to);

/// "output 5: mode T1 -> DI, item 3 30 -> 5".
std::string textOf(const std::string& title, const Changes& changes);

Json jsonOf(const Changes& changes);

}  // namespace velk::cli
