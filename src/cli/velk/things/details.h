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

/// The text of a detail; empty when there is none of this name.
std::string textIn(const Details& details, const std::string& name);

Changes changesOf(const Details& from, const Details& to);

/// "output 5: mode T1 -> DI, item 3 (19) 30 -> 5".
std::string textOf(const std::string& title, const Changes& changes);

Json jsonOf(const Changes& changes);

}  // namespace velk::cli
