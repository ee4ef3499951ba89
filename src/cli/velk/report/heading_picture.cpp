#include <sstream>

#include "cli/shared/wrap.h"
#include "cli/velk/report/drawing.h"
#include "cli/velk/report/pictures.h"

namespace velk::cli {

Drawing drawHeading(const std::string& title, const std::string& from) {
  constexpr int lineHeight = 14;
  constexpr int markWidth = 6;
  constexpr int markHeight = 12;
  constexpr int secondMark = 90;
  Element group("g");
  int y = lineHeight;
  group.add(words("h", 0, y, fitted(title, pictureWidth)));
  const auto columns = static_cast<std::size_t>(pictureWidth / widthOf("n"));
  std::istringstream lines(filled(from, columns));
  for (std::string line; std::getline(lines, line);) {
    y += lineHeight;
    group.add(words("s", 0, y, fitted(line, pictureWidth)));
  }
  y += lineHeight + 4;
  const auto key = [&](const char* style, int x, int radius, const char* text) {
    group.add(rectangle(style, x, y - markHeight + 2, markWidth, markHeight, radius));
    group.add(words("", x + markWidth + 4, y, text));
  };
  key("t", 0, 1, "switch time");
  key("v", secondMark, markHeight / 2, "simulation");
  return {std::move(group), y + 4, title, from};
}

}  // namespace velk::cli
