#pragma once

#include <string>

#include "cli/velk/report/markup.h"

/// The strokes that pictures consist of. Classes are those of the style.
namespace velk::cli {

constexpr int pictureWidth = 360;

Element rectangle(const char* style, int x, int y, int width, int height, int radius = 2);
Element path(const char* style, const std::string& way);
Element words(const char* style, int x, int y, const std::string& text);

/// How wide words are, about.
int widthOf(std::string_view text);

/// The text, cut to so many pixels.
std::string fitted(const std::string& text, int width);

/// A tooltip.
Element tip(const std::string& text);

}  // namespace velk::cli
