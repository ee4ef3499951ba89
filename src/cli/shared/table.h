#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velk::cli {

/// A table for people: columns as wide as their longest cell, two blanks between them.
class Table {
 public:
  using Cells = std::vector<std::string>;

  explicit Table(Cells headings) : rows_{std::move(headings)} {}

  void add(Cells row) { rows_.push_back(std::move(row)); }

  /// Prints headings and rows; when there are no rows, the sentence instead, if there is one.
  void print(std::ostream& out, std::string_view whenEmpty = {}) const;

 private:
  std::vector<Cells> rows_;
};

}  // namespace velk::cli
