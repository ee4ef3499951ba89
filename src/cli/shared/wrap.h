#pragma once

#include <cstddef>
#include <string>

namespace velk::cli {

/// The columns of standard output, but no more than are easy to read.
std::size_t readableWidth();

/// The words of a text in lines of at most so many columns, where no word is longer; all but the first line
/// begin with `indent` blanks, and `column` columns of the first one are taken.
std::string filled(const std::string& text, std::size_t width, std::size_t indent = 0,
                   std::size_t column = 0);

/// A text of paragraphs, headings and indented lines: what is indented and a heading, which ends with a colon,
/// stay as they are, lines that follow each other are filled.
std::string wrapped(const std::string& text, std::size_t width);

}  // namespace velk::cli
