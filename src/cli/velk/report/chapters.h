#pragma once

#include <span>
#include <string>
#include <vector>

#include "cli/velk/report/house_view.h"
#include "cli/velk/report/pictures.h"
#include "cli/velk/report/rows.h"

namespace velk::cli {

using Drawings = std::vector<Drawing>;

/// A part of a report: a table of things of one kind, with pictures of them in front.
struct Chapter {
  const char* id;
  const char* title;
  const char* introduction;
  const char* whenEmpty;
  std::vector<std::string> headings;
  Rows (*read)(HouseView& house);
  /// Of a house, beside what it was before, if there is something to compare.
  Drawings (*draw)(HouseView& is, HouseView* was);
};

/// Those of a report, in its order.
const std::vector<Chapter>& chapters();

/// Those of the week alone.
std::vector<Chapter> weekChapters();

}  // namespace velk::cli
