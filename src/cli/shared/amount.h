#pragma once

#include <cstddef>
#include <string>

namespace velk::cli {

/// "1 line", "2 lines".
inline std::string amount(std::size_t count, const std::string& thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

}  // namespace velk::cli
