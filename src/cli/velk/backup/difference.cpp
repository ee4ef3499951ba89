#include "cli/velk/backup/difference.h"

#include <algorithm>

#include "cli/shared/failure.h"
#include "cli/shared/nearest.h"
#include "cli/velk/backup/describe.h"
#include "cli/velk/backup/offline.h"
#include "cli/velk/things/module.h"

namespace velk::cli {
namespace {

using Things = std::map<Thing, std::vector<Address>>;

Things differingThings(const Lines& from, const Lines& to, const Sections& sections) {
  std::set<Address> lines;
  for (const auto& [at, bytes] : from) lines.insert(at);
  for (const auto& [at, bytes] : to) lines.insert(at);
  Things things;
  for (Address at : lines) {
    for (int i = 0; i < lineSize; ++i, ++at.offset) {
      const auto thing = memory::thingAt(at);
      if (!thing || memory::isReadOnly(at) || byteOf(from, at) == byteOf(to, at)) continue;
      if (isSelected(sections, sectionOf(thing->kind))) things[*thing].push_back(at);
    }
  }
  return things;
}

/// Nothing for bytes that are no such thing.
Details described(Offline& house, Thing thing) {
  try {
    return describe(house.serial(), thing);
  } catch (const Failure&) {
    return {};
  }
}

/// What differs between two outputs, or other things. Items of different modes have nothing to do with each
/// other.
Changes changesOfThings(Details from, Details to) {
  const auto isItem = [](const Detail& detail) { return detail.name.starts_with("item "); };
  if (textIn(from, "mode") != textIn(to, "mode")) {
    std::erase_if(from, isItem);
    std::erase_if(to, isItem);
  }
  return changesOf(from, to);
}

/// For bytes that no detail tells of.
Changes changesOf(const std::vector<Address>& addresses, const Lines& from, const Lines& to) {
  Changes changes;
  for (const Address at : addresses) {
    changes.push_back({"byte " + std::to_string(at.offset) + " of page " + std::to_string(at.page),
                       std::to_string(byteOf(from, at)), std::to_string(byteOf(to, at))});
  }
  return changes;
}

void compareModules(const Backup& from, const Backup& to, std::vector<Difference>& differences) {
  for (const Module& module : from.modules) {
    const auto other = std::find_if(to.modules.begin(), to.modules.end(),
                                    [&](const Module& m) { return m.serial == module.serial; });
    if (other == to.modules.end()) continue;
    auto changes = changesOf(detailsOf(module), detailsOf(*other));
    if (!changes.empty()) differences.push_back({titleOf(module), {}, std::move(changes)});
  }
}

}  // namespace

Sections parseSections(const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    if (std::find(sections().begin(), sections().end(), name) != sections().end()) continue;
    const std::vector<std::string> known(sections().begin(), sections().end());
    std::string all = ", but";
    for (const std::string_view section : sections()) all.append(" ").append(section);
    throw std::invalid_argument("there is no section \"" + name + "\"" + didYouMean(name, known, all));
  }
  return {names.begin(), names.end()};
}

bool isSelected(const Sections& sections, std::string_view name) {
  return sections.empty() || sections.contains(name);
}

std::vector<Difference> compare(const Backup& from, const Backup& to, const Sections& sections) {
  std::vector<Difference> differences;
  Offline before(from.lines);
  Offline after(to.lines);
  for (const auto& [thing, addresses] : differingThings(from.lines, to.lines, sections)) {
    auto changes = changesOfThings(described(before, thing), described(after, thing));
    if (changes.empty()) changes = changesOf(addresses, from.lines, to.lines);
    differences.push_back({titleOf(thing), addresses, std::move(changes)});
  }
  if (isSelected(sections, "modules")) compareModules(from, to, differences);
  return differences;
}

std::string textOf(const Difference& difference) {
  return textOf(difference.title, difference.changes);
}

Json jsonOf(const std::vector<Difference>& differences) {
  Json json = Json::array();
  for (const Difference& difference : differences) {
    json.push_back({{"thing", difference.title},
                    {"bytes", difference.addresses.size()},
                    {"changes", jsonOf(difference.changes)}});
  }
  return json;
}

}  // namespace velk::cli
