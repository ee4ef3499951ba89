#pragma once

#include <string>
#include <vector>

#include "cli/velk/report/markup.h"
#include "cli/velk/things/details.h"
#include "values/bytes.h"

namespace velk::cli {

/// What stands in one place of a table: a text, which is a detail without a name, or several with names.
struct Cell {
  Details parts;
  std::string kind = {};    ///< details of different kinds have nothing to do with each other
  bool isOfOthers = false;  ///< tells of other things, so that the thing itself has not changed with it

  friend bool operator==(const Cell&, const Cell&) = default;
};

Cell cellOf(const std::string& text);

/// A thing in a table.
struct Row {
  Bytes key;                ///< which thing it is, in the order of the table
  std::vector<Cell> cells;  ///< the first one names it
  Details things = {};      ///< that it stands for and that are counted, in place of itself
};

using Rows = std::vector<Row>;

/// How many things a table tells of, and how many of them changed in which way.
struct Fates {
  int things = 0;
  int added = 0;
  int removed = 0;
  int changed = 0;
};

/// "20, 1 added, 3 changed".
std::string textOf(const Fates& fates);

struct RowsTable {
  Element table;
  Fates fates;
};

/// A table; `was` are the rows of the house before, if there was one, and what changed since is marked then.
RowsTable tableOf(const std::string& caption, const std::vector<std::string>& headings, const Rows& is,
                  const Rows* was);

}  // namespace velk::cli
