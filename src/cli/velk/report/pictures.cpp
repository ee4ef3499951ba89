#include "cli/velk/report/pictures.h"

#include "cli/velk/report/drawing.h"
#include "cli/velk/report/style.h"

namespace velk::cli {
namespace {

constexpr int margin = 12;

std::string boxOf(int width, int height) {
  return "0 0 " + std::to_string(width) + " " + std::to_string(height);
}

}  // namespace

Element inlined(Drawing drawing, const std::string& id) {
  Element svg("svg", {{"viewBox", boxOf(pictureWidth, drawing.height)},
                      {"role", "img"},
                      {"aria-labelledby", id + "-title " + id + "-words"}});
  svg.add(Element("title", {{"id", id + "-title"}}, drawing.title));
  svg.add(Element("desc", {{"id", id + "-words"}}, drawing.words));
  svg.add(std::move(drawing.group));
  return svg;
}

std::string standAlone(std::vector<Drawing> drawings, const std::string& title) {
  int height = margin;
  Element all("g");
  std::string description;
  for (Drawing& drawing : drawings) {
    Element moved(
        "g", {{"transform", "translate(" + std::to_string(margin) + " " + std::to_string(height) + ")"}});
    moved.add(std::move(drawing.group));
    all.add(std::move(moved));
    height += drawing.height + margin;
    description += drawing.title + ": " + drawing.words + "\n";
  }
  constexpr int width = pictureWidth + 2 * margin;
  Element svg("svg", {{"xmlns", "http://www.w3.org/2000/svg"},
                      {"width", std::to_string(width)},
                      {"height", std::to_string(height)},
                      {"viewBox", boxOf(width, height)},
                      {"role", "img"}});
  svg.add(Element("title", title)).add(Element("desc", description)).add(Element("style", pictureStyle()));
  svg.add(rectangle("p", 0, 0, width, height, 0)).add(std::move(all));
  return svg.print();
}

}  // namespace velk::cli
