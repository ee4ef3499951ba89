#include "cli/velk/report/rows.h"

#include <algorithm>
#include <map>

namespace velk::cli {
namespace {

/// A row now and before; one of them may be missing.
struct Pair {
  const Row* was = nullptr;
  const Row* is = nullptr;

  [[nodiscard]] const Row& any() const { return is == nullptr ? *was : *is; }
};

using Pairs = std::map<Bytes, Pair>;

Pairs paired(const Rows& is, const Rows* was) {
  Pairs pairs;
  for (const Row& row : is) pairs[row.key].is = &row;
  if (was == nullptr) return pairs;
  for (const Row& row : *was) pairs[row.key].was = &row;
  return pairs;
}

std::string wordsOf(const Detail& part) {
  if (part.name.empty() || part.text.empty()) return part.name + part.text;
  return part.name + ": " + part.text;
}

/// A detail with a name stands by itself.
Element framed(const Detail& part) {
  return part.name.empty() ? Element("span") : Element("span", {{"class", "part"}});
}

/// "18.low:".
Element nameOf(const Detail& part) {
  return {"span", {{"class", "name"}}, part.text.empty() ? part.name : part.name + ":"};
}

Element plain(const Detail& part) {
  Element span = framed(part);
  if (part.name.empty()) return std::move(span.add(part.text));
  span.add(nameOf(part));
  return std::move(part.text.empty() ? span : span.add(" ").add(part.text));
}

Element changed(const Detail& was, const Detail& is) {
  Element span = framed(is);
  if (!is.name.empty()) span.add(nameOf(is)).add(" ");
  const auto shown = [](const std::string& text) { return text.empty() ? std::string("nothing") : text; };
  span.add(Element("del", "was " + shown(was.text))).add(" ").add(Element("ins", "is " + shown(is.text)));
  return span;
}

Element only(const Detail& part, const char* tag, const char* word) {
  Element span = framed(part);
  span.add(Element(tag, word + std::string(" ") + wordsOf(part)));
  return span;
}

void addPart(Element& cell, Element part) {
  if (!cell.isEmpty()) cell.add(" ");
  cell.add(std::move(part));
}

const Detail* find(const Details& parts, const Detail& like) {
  const auto same = std::find(parts.begin(), parts.end(), like);
  if (same != parts.end()) return &*same;
  const auto found =
      std::find_if(parts.begin(), parts.end(), [&](const Detail& part) { return part.name == like.name; });
  return found == parts.end() ? nullptr : &*found;
}

void fill(Element& element, const Cell& is) {
  for (const Detail& part : is.parts) addPart(element, plain(part));
}

void fill(Element& element, const Cell& was, const Cell& is) {
  const bool comparable = was.kind == is.kind;
  for (const Detail& part : was.parts) {
    if (!comparable || find(is.parts, part) == nullptr) addPart(element, only(part, "del", "removed"));
  }
  for (const Detail& part : is.parts) {
    const Detail* const before = comparable ? find(was.parts, part) : nullptr;
    addPart(element, before == nullptr ? only(part, "ins", "added")
                     : *before == part ? plain(part)
                                       : changed(*before, part));
  }
}

bool isSame(const Row& was, const Row& is) {
  return std::equal(was.cells.begin(), was.cells.end(), is.cells.begin(), is.cells.end(),
                    [](const Cell& a, const Cell& b) { return a.isOfOthers || a == b; });
}

const char* fateOf(const Pair& pair) {
  if (pair.was == nullptr) return "added";
  if (pair.is == nullptr) return "removed";
  return isSame(*pair.was, *pair.is) ? "" : "changed";
}

/// The things of a row; a row without them is one itself, and tells as its text whether it is the same.
Details thingsOf(const Row* row, const std::string& text) {
  if (row == nullptr) return {};
  return row->things.empty() ? Details{{"", text}} : row->things;
}

void count(const Pair& pair, bool compared, Fates& fates) {
  const bool stayed = pair.was != nullptr && pair.is != nullptr && isSame(*pair.was, *pair.is);
  const Details is = thingsOf(pair.is, "");
  const Details was = thingsOf(pair.was, stayed ? "" : "before");
  fates.things += static_cast<int>(is.size());
  if (!compared) return;
  for (const Detail& thing : is) {
    const Detail* const before = find(was, thing);
    if (before == nullptr) ++fates.added;
    if (before != nullptr && *before != thing) ++fates.changed;
  }
  for (const Detail& thing : was) {
    if (find(is, thing) == nullptr) ++fates.removed;
  }
}

Element rowOf(const Pair& pair, const std::vector<std::string>& headings, const std::string& fate) {
  Element row = fate.empty() ? Element("tr") : Element("tr", {{"class", fate}});
  const Row& any = pair.any();
  for (std::size_t i = 0; i < any.cells.size(); ++i) {
    const bool isHeading = i == 0;
    Element cell = isHeading ? Element("th", {{"scope", "row"}, {"data-h", headings.front()}})
                             : Element("td", {{"data-h", headings.at(i)}});
    if (pair.was != nullptr && pair.is != nullptr) {
      fill(cell, pair.was->cells[i], pair.is->cells[i]);
    } else {
      fill(cell, any.cells[i]);
    }
    if (isHeading && !fate.empty()) cell.add(" ").add(Element("span", {{"class", "fate"}}, fate));
    row.add(std::move(cell));
  }
  return row;
}

}  // namespace

Cell cellOf(const std::string& text) {
  return {.parts = text.empty() ? Details() : Details{{"", text}}};
}

std::string textOf(const Fates& fates) {
  std::string text = std::to_string(fates.things);
  const auto add = [&](int count, const char* word) {
    if (count != 0) text += ", " + std::to_string(count) + " " + word;
  };
  add(fates.added, "added");
  add(fates.removed, "removed");
  add(fates.changed, "changed");
  return text;
}

RowsTable tableOf(const std::string& caption, const std::vector<std::string>& headings, const Rows& is,
                  const Rows* was) {
  Element head("tr");
  for (const std::string& heading : headings) head.add(Element("th", {{"scope", "col"}}, heading));
  Element body("tbody");
  Fates fates;
  for (const auto& [key, pair] : paired(is, was)) {
    count(pair, was != nullptr, fates);
    body.add(rowOf(pair, headings, was == nullptr ? "" : fateOf(pair)));
  }
  Element table("table", {{"aria-label", caption}});
  Element headOf("thead");
  headOf.add(std::move(head));
  table.add(std::move(headOf)).add(std::move(body));
  return {std::move(table), fates};
}

}  // namespace velk::cli
