#include "cli/velk/report/drawing.h"

#include <algorithm>

namespace velk::cli {
namespace {

/// Fonts differ: rather too much than words across each other. Of two characters:
constexpr int widthOfTwo = 13;
constexpr int boldWidthOfTwo = 15;

bool startsCharacter(char c) {
  return (c & '\xC0') != '\x80';
}

int charactersOf(std::string_view text) {
  return static_cast<int>(std::count_if(text.begin(), text.end(), startsCharacter));
}

}  // namespace

Element rectangle(const char* style, int x, int y, int width, int height, int radius) {
  return Element("rect", {{"class", style},
                          {"x", std::to_string(x)},
                          {"y", std::to_string(y)},
                          {"width", std::to_string(width)},
                          {"height", std::to_string(height)},
                          {"rx", std::to_string(radius)}});
}

Element path(const char* style, const std::string& way) {
  return Element("path", {{"class", style}, {"d", way}});
}

Element words(const char* style, int x, int y, const std::string& text) {
  Element::Attributes attributes{{"x", std::to_string(x)}, {"y", std::to_string(y)}};
  if (*style != '\0') attributes.emplace(attributes.begin(), "class", style);
  return {"text", std::move(attributes), text};
}

int widthOf(std::string_view text) {
  return widthOfTwo * charactersOf(text) / 2;
}

std::string fitted(const std::string& text, int width) {
  const int room = width * 2 / boldWidthOfTwo;
  if (charactersOf(text) <= room) return text;
  std::string cut;
  for (const char c : text) {
    if (startsCharacter(c) && charactersOf(cut) + 1 >= room) break;
    cut += c;
  }
  return cut + "\u2026";
}

Element tip(const std::string& text) {
  return {"title", text};
}

}  // namespace velk::cli
