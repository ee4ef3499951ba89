#include "cli/velk/report/drawing.h"
#include "cli/velk/report/pictures.h"

namespace velk::cli {
namespace {

constexpr int boxWidth = 66;
constexpr int boxHeight = 22;
constexpr int turn = 78;  ///< where the stem goes down
constexpr int edgesAt = 102;
constexpr int edgeWidth = 12;
constexpr int lineEnd = 138;
constexpr int numberAt = 143;
constexpr int nameAt = 202;
constexpr int sideWidth = 36;
constexpr int rowHeight = 24;
constexpr int axis = 15;  ///< of a row

std::string at(int x, int y) {
  return "M" + std::to_string(x) + " " + std::to_string(y);
}

std::string sideOf(Side side) {
  return side == Side::both ? "" : side == Side::was ? "\u2212 was" : "+ is";
}

/// A step up, a step down, or both: what the link acts upon.
std::string stepsOf(const SoftLink& link, int middle) {
  std::string way;
  if (link.rising) way += at(edgesAt, middle - 3) + "h5v-9h5";
  if (link.falling) way += at(edgesAt + edgeWidth + 4, middle - 12) + "h5v9h5";
  return way;
}

Element row(const DrawnLink& drawn, int top) {
  const int middle = top + axis;
  const int base = middle + 4;
  Element group("g");
  if (drawn.side != Side::both) group = Element("g", {{"class", drawn.side == Side::was ? "was" : "is"}});
  group.add(tip(titleOf(drawn.link) + ": " + wordsOf(drawn)));
  group.add(path("l", at(turn, middle) + "H" + std::to_string(lineEnd) + "m-5 -4l5 4l-5 4"));
  group.add(rectangle("p", turn + 4, middle - 6, 14, 12, 0));
  group.add(words("", turn + 5, base, "." + std::to_string(drawn.link.sub)));
  const std::string steps = stepsOf(drawn.link, middle);
  if (!steps.empty()) group.add(path("k", steps));
  group.add(words("s", numberAt, base, destinationOf(drawn.link)));
  const std::string side = sideOf(drawn.side);
  const int end = pictureWidth - (side.empty() ? 0 : sideWidth);
  if (!drawn.name.empty()) group.add(words("h", nameAt, base, fitted(drawn.name, end - nameAt)));
  if (!side.empty()) group.add(words("w e", pictureWidth, base, side));
  return group;
}

}  // namespace

std::string wordsOf(const DrawnLink& drawn) {
  std::string text = destinationOf(drawn.link) + (drawn.name.empty() ? "" : " " + drawn.name);
  if (drawn.side != Side::both) text = (drawn.side == Side::was ? "was " : "is ") + text;
  const std::string edges = edgesOf(drawn.link);
  if (!edges.empty()) text += ", " + edges;
  if (drawn.link.toOutput) text += ", parameters " + parametersOf(drawn.link);
  return text;
}

Drawing draw(const std::vector<DrawnLink>& links) {
  const std::string source = "source " + std::to_string(links.front().link.source);
  Element picture("g");
  const int last = (static_cast<int>(links.size()) - 1) * rowHeight + axis;
  picture.add(path("l", at(boxWidth, axis) + "H" + std::to_string(turn) + "V" + std::to_string(last)));
  picture.add(rectangle("b", 1, axis - boxHeight / 2, boxWidth - 1, boxHeight, 4));
  picture.add(words("h m", boxWidth / 2 + 1, axis + 4, source));
  std::string text;
  int y = 0;
  for (const DrawnLink& link : links) {
    picture.add(row(link, y));
    y += rowHeight;
    text += (text.empty() ? "" : "; ") + titleOf(link.link) + " " + wordsOf(link);
  }
  return {std::move(picture), y + 4, source, std::move(text)};
}

}  // namespace velk::cli
