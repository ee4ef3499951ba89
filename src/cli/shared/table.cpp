#include "cli/shared/table.h"

#include <algorithm>
#include <ostream>

#include "cli/shared/terminal.h"

namespace velk::cli {
namespace {

/// Characters, not bytes, of a UTF-8 text.
std::size_t widthOf(const std::string& text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (c & '\xC0') != '\x80'; }));
}

std::string lineOf(const Table::Cells& row, const std::vector<std::size_t>& widths) {
  std::string line;
  std::string gap;
  for (std::size_t i = 0; i < row.size(); ++i) {
    line += gap + row[i];
    gap = row[i].empty() && i + 1 == row.size() ? "" : std::string(widths[i] - widthOf(row[i]) + 2, ' ');
  }
  return line.substr(0, line.find_last_not_of(' ') + 1);
}

}  // namespace

void Table::print(std::ostream& out, std::string_view whenEmpty) const {
  if (rows_.size() == 1) {
    if (!whenEmpty.empty()) out << whenEmpty << '\n';
    return;
  }
  std::vector<std::size_t> widths;
  for (const Cells& row : rows_) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], widthOf(row[i]));
  }
  out << bold(lineOf(rows_.front(), widths)) << '\n';
  for (std::size_t i = 1; i < rows_.size(); ++i) out << lineOf(rows_[i], widths) << '\n';
}

}  // namespace velk::cli
