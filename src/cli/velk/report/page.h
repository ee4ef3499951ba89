#pragma once

#include <string>
#include <vector>

#include "cli/velk/report/chapters.h"

namespace velk::cli {

/// What stands above a report.
struct Heading {
  std::string title;              ///< which house
  std::vector<std::string> from;  ///< where and when it was read, a line each
};

/// A page that needs no other file and no script. With `was`, what a house was before, it marks what changed.
std::string pageOf(const Heading& heading, const std::vector<Chapter>& chapters, HouseView& is,
                   HouseView* was = nullptr);

}  // namespace velk::cli
