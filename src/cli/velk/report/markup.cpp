#include "cli/velk/report/markup.h"

#include <algorithm>
#include <array>
#include <span>

#include "values/bytes.h"

namespace velk::cli {
namespace {

using Names = std::span<const std::string_view>;

/// Those that a line ends behind.
constexpr std::array<std::string_view, 37> blocks{
    "html",    "head", "body",  "meta", "title", "style",   "header",    "main", "footer", "nav",
    "section", "div",  "table", "tr",   "thead", "tbody",   "ul",        "li",   "p",      "h1",
    "h2",      "h3",   "dl",    "dt",   "dd",    "caption", "svg",       "g",    "rect",   "path",
    "circle",  "text", "desc",  "a",    "ol",    "figure",  "figcaption"};

/// Those that have nothing in them, and no end tag.
constexpr std::array<std::string_view, 5> empties{"meta", "br", "rect", "path", "circle"};

bool isAmong(Names names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

/// What replaces a character in a page; empty when it stands for itself.
std::string_view replacementOf(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    default:
      return {};
  }
}

struct Character {
  char32_t value;
  std::size_t size;  ///< in bytes; 0 for what is no UTF-8
};

/// The first character of a text in UTF-8.
Character firstOf(std::string_view text) {
  constexpr std::array<char32_t, 5> least{0, 0, 0x80, 0x800, 0x10000};
  const Byte first = byteValue(text.front());
  if (first < 0x80) return {first, 1};
  const std::size_t size = first >= 0xF8 ? 0 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 0;
  if (size == 0 || size > text.size()) return {0, 0};
  char32_t value = first & (0x7FU >> size);
  for (std::size_t i = 1; i < size; ++i) {
    if ((byteValue(text[i]) & 0xC0) != 0x80) return {0, 0};
    value = value << 6 | (byteValue(text[i]) & 0x3FU);
  }
  return {value, value < least.at(size) ? 0 : size};
}

/// Whether a page may hold it: no control but a line's end, no half of a pair, nothing that is never given out.
bool isCharacter(char32_t value) {
  if (value < 0xA0) return value == '\n' || (value >= ' ' && value < 0x7F);
  const bool isHalf = value >= 0xD800 && value <= 0xDFFF;
  const bool isNone = (value & 0xFFFE) == 0xFFFE || (value >= 0xFDD0 && value <= 0xFDEF);
  return !isHalf && !isNone && value <= 0x10FFFF;
}

}  // namespace

std::string escapedMarkup(std::string_view text) {
  std::string safe;
  while (!text.empty()) {
    const auto [value, size] = firstOf(text);
    const std::size_t used = std::max<std::size_t>(size, 1);
    if (size == 0 || !isCharacter(value)) {
      safe += "\xEF\xBF\xBD";
    } else if (const auto replacement = replacementOf(text.front()); !replacement.empty()) {
      safe += replacement;
    } else {
      safe += text.substr(0, used);
    }
    text.remove_prefix(used);
  }
  return safe;
}

Element::Element(std::string_view name, Attributes attributes)
    : name_(name), attributes_(std::move(attributes)) {}

Element::Element(std::string_view name, std::string_view text) : name_(name) {
  add(text);
}

Element::Element(std::string_view name, Attributes attributes, std::string_view text)
    : name_(name), attributes_(std::move(attributes)) {
  add(text);
}

Element& Element::add(Element child) {
  children_.push_back(std::move(child));
  return *this;
}

Element& Element::add(std::string_view text) {
  Element child("");
  child.text_ = text;
  return add(std::move(child));
}

std::string Element::print() const {
  std::string out;
  printTo(out);
  return out;
}

void Element::printTo(std::string& out) const {
  if (name_.empty()) {
    out += escapedMarkup(text_);
    return;
  }
  out += "<" + name_;
  for (const auto& [name, value] : attributes_) {
    out.append(" ").append(name).append("=\"").append(escapedMarkup(value)).append("\"");
  }
  if (isAmong(empties, name_)) {
    out += "/>";
  } else {
    printInside(out);
    out += "</" + name_ + ">";
  }
  if (isAmong(blocks, name_)) out += '\n';
}

void Element::printInside(std::string& out) const {
  out += '>';
  if (!children_.empty() && isAmong(blocks, children_.front().name_)) out += '\n';
  for (const Element& child : children_) child.printTo(out);
}

}  // namespace velk::cli
