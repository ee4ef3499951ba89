#pragma once

#include <string>
#include <vector>

#include "cli/velk/report/lanes.h"
#include "cli/velk/report/markup.h"
#include "cli/velk/things/soft_link.h"

/// Pictures of 360 pixels' width, which a phone shows unscaled.
namespace velk::cli {

/// A part of a picture, and the same in words.
struct Drawing {
  Element group;
  int height;
  std::string title;
  std::string words;
};

Drawing draw(const Lane& lane);

/// What stands above pictures: which house, where and when it was read, and what the marks of the week mean.
Drawing drawHeading(const std::string& title, const std::string& from);

/// A link as it is drawn.
struct DrawnLink {
  SoftLink link;
  std::string name;  ///< of the output that it leads to
  Side side = Side::both;
};

/// The links of one source, one below the other.
Drawing draw(const std::vector<DrawnLink>& links);

/// "output 5 Hall ceiling, rising, parameters 3, 10".
std::string wordsOf(const DrawnLink& drawn);

/// A drawing as a picture of a page. `id` is its own there.
Element inlined(Drawing drawing, const std::string& id);

/// Drawings one below the other, as the text of a file.
std::string standAlone(std::vector<Drawing> drawings, const std::string& title);

}  // namespace velk::cli
