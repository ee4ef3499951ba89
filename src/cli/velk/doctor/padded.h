#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace velk::cli {

/// A cell of a line, at least as wide as told, and a blank behind one that is wider.
inline std::string padded(std::string_view text, std::size_t width) {
  std::string cell(text);
  cell.resize(std::max(cell.size() + 1, width), ' ');
  return cell;
}

}  // namespace velk::cli
