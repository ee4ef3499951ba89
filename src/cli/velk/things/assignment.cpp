#include "cli/velk/things/assignment.h"

#include <optional>
#include <stdexcept>

#include "cli/velk/things/output.h"
#include "values/digits.h"

namespace velk::cli {
namespace {

using parameters::Layout;

std::optional<std::size_t> itemNumbered(const Layout& layout, std::string_view typed) {
  const auto number = wholeNumber<std::size_t>(typed);
  return number && *number < layout.items.size() ? number : std::nullopt;
}

std::optional<std::size_t> itemAt(const Layout& layout, std::string_view place) {
  for (std::size_t i = 0; i < layout.items.size(); ++i) {
    if (placeOf(layout.items[i]) == place) return i;
  }
  return std::nullopt;
}

/// A number that is an item and the place of another is refused: the wrong one would be written unseen.
std::optional<std::size_t> findItem(const Layout& layout, std::string_view typed) {
  constexpr std::string_view byNumber = "item:";
  constexpr std::string_view byPlace = "place:";
  if (typed.starts_with(byNumber)) return itemNumbered(layout, typed.substr(byNumber.size()));
  if (typed.starts_with(byPlace)) return itemAt(layout, typed.substr(byPlace.size()));
  const auto numbered = itemNumbered(layout, typed);
  const auto placed = itemAt(layout, typed);
  if (numbered && placed && numbered != placed) {
    const std::string name(typed);
    throw std::invalid_argument("\"" + name + "\" may be " + titleOf(layout, *numbered) + " or " +
                                titleOf(layout, *placed) + ": write item:" + name + " or place:" + name);
  }
  return numbered ? numbered : placed;
}

std::string itemsOf(const Layout& layout) {
  if (layout.items.empty()) return "no items";
  std::string text = "the items 0 to " + std::to_string(layout.items.size() - 1) + " at";
  for (const parameters::Item& item : layout.items) text += " " + placeOf(item);
  return text;
}

}  // namespace

Assignments parseAssignments(const Layout& layout, const std::vector<std::string>& words) {
  Assignments wanted;
  for (const std::string& word : words) {
    const auto equals = word.find('=');
    const auto item = findItem(layout, slice(word, 0, equals));
    if (equals == std::string::npos || !item) {
      throw std::invalid_argument("\"" + word + "\" is no ITEM=VALUE; " + std::string(layout.code) + " has " +
                                  itemsOf(layout));
    }
    const std::string text = word.substr(equals + 1);
    const auto value = parseItem(layout.items[*item], text);
    if (!value) {
      throw std::invalid_argument(titleOf(layout, *item) + " is " + rangeOf(layout.items[*item]) +
                                  ", not \"" + text + "\"");
    }
    if (!wanted.emplace(*item, *value).second) {
      throw std::invalid_argument(titleOf(layout, *item) + " is set twice");
    }
  }
  return wanted;
}

}  // namespace velk::cli
