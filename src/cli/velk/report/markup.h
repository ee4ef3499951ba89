#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velk::cli {

/// A text as it stands in a page, where nothing in it means anything to a browser. What is no character (control
/// bytes, broken UTF-8) stands as U+FFFD.
std::string escapedMarkup(std::string_view text);

/// An element of a page or a picture, with what is in it. It prints itself as HTML that is XML as well; texts
/// and attributes are escaped there, so that nobody can forget it.
class Element {
 public:
  using Attribute = std::pair<std::string_view, std::string>;
  using Attributes = std::vector<Attribute>;

  explicit Element(std::string_view name, Attributes attributes = {});
  Element(std::string_view name, std::string_view text);
  Element(std::string_view name, Attributes attributes, std::string_view text);

  /// Each returns this element, to which it adds at the end.
  Element& add(Element child);
  Element& add(std::string_view text);

  [[nodiscard]] bool isEmpty() const { return children_.empty(); }

  /// As it stands in a file.
  [[nodiscard]] std::string print() const;

 private:
  void printTo(std::string& out) const;
  void printInside(std::string& out) const;

  std::string name_;  ///< empty for a text
  std::string text_;
  Attributes attributes_;
  std::vector<Element> children_;
};

}  // namespace velk::cli
