#pragma once

#include <string>
#include <vector>

namespace velk::cli {

/// One detail of a thing, as people read it.
struct Detail {
  std::string name;
  std::string text;

  friend bool operator==(const Detail&, const Detail&) = default;
};

using Details = std::vector<Detail>;

}  // namespace velk::cli
