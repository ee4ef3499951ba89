#include "cli/velk/things/details.h"

#include <algorithm>

namespace velk::cli {

std::string textIn(const Details& details, const std::string& name) {
  const auto found =
      std::find_if(details.begin(), details.end(), [&](const Detail& other) { return other.name == name; });
  return found == details.end() ? std::string() : found->text;
}

Changes changesOf(const Details& from, const Details& to) {
  Changes changes;
  for (const Detail& detail : from) {
    const std::string other = textIn(to, detail.name);
    if (other != detail.text) changes.push_back({detail.name, detail.text, other});
  }
  for (const Detail& detail : to) {
    const bool isNew = std::none_of(from.begin(), from.end(),
                                    [&](const Detail& other) { return other.name == detail.name; });
    if (isNew && !detail.text.empty()) changes.push_back({detail.name, "", detail.text});
  }
  return changes;
}

std::string textOf(const std::string& title, const Changes& changes) {
  const auto shown = [](const std::string& text) { return text.empty() ? "(none)" : text; };
  std::string text = title + ":";
  const char* gap = " ";
  for (const ChangedDetail& change : changes) {
    text += gap + change.name + " " + shown(change.from) + " -> " + shown(change.to);
    gap = ", ";
  }
  return text;
}

Json jsonOf(const Changes& changes) {
  Json json = Json::array();
  for (const ChangedDetail& change : changes) {
    json.push_back({{"field", change.name}, {"from", change.from}, {"to", change.to}});
  }
  return json;
}

}  // namespace velk::cli
