#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace velk::cli {

/// A table for people: columns as wide as their longest cell, two blanks between them.
class Table {
 public:
  using Row = std::vector<std::string>;

  explicit Table(Row headings) : rows_{std::move(headings)} {}

  void add(Row row) { rows_.push_back(std::move(row)); }

  /// Prints headings and rows; the sentence instead when there are no rows.
  void print(std::ostream& out, const std::string& whenEmpty) const;

 private:
  std::vector<Row> rows_;
};

}  // namespace velk::cli
