#include "cli/velk/report/chapters.h"

#include <algorithm>
#include <map>
#include <string_view>

#include "cli/velk/connection/transfer.h"
#include "cli/velk/things/firmware.h"
#include "cli/velk/things/module.h"
#include "cli/velk/things/output.h"
#include "cli/velk/things/preset.h"
#include "cli/velk/things/words.h"
#include "controller/ctl_lang.h"
#include "parameters/ctl_irtext.h"
#include "parameters/layouts.h"

namespace velk::cli {
namespace {

constexpr Byte textSize = 16;

Bytes keyOf(int number) {
  return Bytes(1, character(number));
}

std::string counted(std::size_t number, const char* one, const char* many) {
  return std::to_string(number) + " " + (number == 1 ? one : many);
}

/// What reaches each output: links, switch times, events.
std::map<Byte, Details> switchersOf(HouseView& house) {
  std::map<Byte, Details> found;
  for (const SoftLink& link : house.links()) {
    if (link.toOutput) found[link.destination].push_back({"link " + titleOf(link), edgesOf(link)});
  }
  for (const SwitchTime& time : house.week().times) {
    for (const Bytes& entry : entriesOf(time)) {
      if (!time.readable || entry.size() < 3) continue;
      found[byteAt(entry, 0)].push_back({titleOf(time), daysOf(time.days) + " " + timeOf(time)});
    }
  }
  std::map<Byte, std::size_t> events;
  for (const Event& event : house.week().events) ++events[byteAt(event.record, 2)];
  for (const auto& [output, number] : events) {
    found[output].push_back({"simulation", counted(number, "event", "events")});
  }
  return found;
}

/// An item by its place: "16:0", "M (set)".
Details settingsOf(const Output& output) {
  Details details;
  const auto* const layout = parameters::layoutOf(output.mode);
  for (std::size_t i = 0; layout != nullptr && i < output.items.size(); ++i) {
    const parameters::Item& item = layout->items[i];
    std::string value = valueOf(item, output.items[i]);
    if (value == "M") value += " (set)";
    if (value == "S") value += " (clear)";
    details.push_back({placeOf(item), std::move(value)});
  }
  return details;
}

Rows readOutputs(HouseView& house) {
  Rows rows;
  std::map<Byte, Details> switchers = switchersOf(house);
  for (Byte number = 1; number <= lastOutput; ++number) {
    const Output output = readOutput(house.serial(), number);
    Details& switched = switchers[number];
    if (output.mode.empty() && output.name.empty() && switched.empty()) continue;
    rows.push_back(
        {keyOf(number),
         {cellOf(named(std::to_string(number), output.name)),
          cellOf(output.mode.empty() ? "no mode"
                                     : named(output.mode, std::string(meaningOfMode(output.mode)))),
          {settingsOf(output), output.mode},
          {.parts = std::move(switched), .isOfOthers = true}}});
  }
  return rows;
}

Rows readLinkRows(HouseView& house) {
  Rows rows;
  for (const SoftLink& link : house.links()) {
    rows.push_back(
        {keyOf(link.source) + keyOf(link.sub),
         {cellOf(titleOf(link)), cellOf(named(destinationOf(link), destinationName(link, house.names()))),
          cellOf(edgesOf(link)), cellOf(link.toOutput ? parametersOf(link) : "")}});
  }
  return rows;
}

bool isSame(const SoftLink& a, const SoftLink& b) {
  return a.toOutput == b.toOutput && a.destination == b.destination && a.parameters1 == b.parameters1 &&
         a.parameters2 == b.parameters2 && a.rising == b.rising && a.falling == b.falling;
}

/// By source and sub-address.
using LinkMap = std::map<std::pair<Byte, Byte>, SoftLink>;

LinkMap mapOf(HouseView* house) {
  LinkMap links;
  if (house == nullptr) return links;
  for (const SoftLink& link : house->links()) links.emplace(std::pair(link.source, link.sub), link);
  return links;
}

Drawings drawLinks(HouseView& is, HouseView* was) {
  const LinkMap now = mapOf(&is);
  const LinkMap before = mapOf(was);
  std::map<Byte, std::map<Byte, std::vector<DrawnLink>>> sources;
  const auto put = [&](const SoftLink& link, Side side) {
    sources[link.source][link.sub].push_back({link, destinationName(link, is.names()), side});
  };
  for (const auto& [at, link] : before) {
    const auto same = now.find(at);
    if (same == now.end() || !isSame(link, same->second)) put(link, Side::was);
  }
  for (const auto& [at, link] : now) {
    const auto same = before.find(at);
    const bool stayed = was == nullptr || (same != before.end() && isSame(link, same->second));
    put(link, stayed ? Side::both : Side::is);
  }
  Drawings drawings;
  for (const auto& [source, subs] : sources) {
    std::vector<DrawnLink> links;
    for (const auto& [sub, drawn] : subs) links.insert(links.end(), drawn.begin(), drawn.end());
    drawings.push_back(draw(links));
  }
  return drawings;
}

Rows readPresets(HouseView& house) {
  Rows rows;
  for (Byte number = 1; number <= lastPreset; ++number) {
    const Preset preset = readPreset(house.serial(), number);
    if (!isUsed(preset)) continue;
    Details records;
    for (const auto& [record, bytes] : preset.records) {
      records.push_back(
          {named("record " + std::to_string(record), house.names().of(record)), numbers(bytes)});
    }
    const std::string second = preset.delay2 == 0 ? "" : " and " + std::to_string(preset.delay2);
    rows.push_back({keyOf(number),
                    {cellOf(named(std::to_string(number), textOf(preset))),
                     cellOf(std::to_string(preset.delay1) + second),
                     cellOf(preset.simulated ? "yes" : "no"),
                     {std::move(records)}}});
  }
  return rows;
}

Details entriesIn(const SwitchTime& time, OutputNames& names) {
  Details details;
  for (const Bytes& entry : entriesOf(time)) {
    SwitchTime alone = time;
    alone.data = entry;
    details.push_back({"", actionOf(alone, names)});
  }
  return details;
}

Rows readSwitchTimes(HouseView& house) {
  Rows rows;
  for (const SwitchTime& time : house.week().times) {
    Cell switches = cellOf(actionOf(time, house.names()));
    if (time.readable && !time.data.empty()) {
      switches.parts.clear();
      for (const Detail& entry : entriesIn(time, house.names())) {
        const auto colon = entry.text.rfind(": ");
        const auto behind = std::min(colon, entry.text.size() - 2) + 2;
        switches.parts.push_back(
            {entry.text.substr(0, colon), colon == std::string::npos ? "" : entry.text.substr(behind)});
      }
    }
    rows.push_back({keyOf(time.block),
                    {cellOf(std::to_string(time.block)), cellOf(time.readable ? timeOf(time) : ""),
                     cellOf(time.readable ? daysOf(time.days) : ""), std::move(switches)}});
  }
  return rows;
}

Drawings drawWeek(HouseView& is, HouseView* was) {
  const auto now = momentsOf(is.week(), is.names());
  const auto lanes = was == nullptr ? lanesOf(now) : lanesOf(momentsOf(was->week(), was->names()), now);
  Drawings drawings;
  for (const Lane& lane : lanes) drawings.push_back(draw(lane));
  return drawings;
}

/// A row for each output, with its events; the same one of several days stands once, by its days, so that what changes
/// of it is the days.
Rows readSimulation(HouseView& house) {
  std::map<Byte, std::map<std::pair<std::string, std::string>, Byte>> outputs;
  for (const Event& event : house.week().events) {
    Byte& days = outputs[byteAt(event.record, 2)][{timeOf(event), numbers(slice(event.record, 3))}];
    days = static_cast<Byte>(days | 1 << event.day);
  }
  Rows rows;
  for (const auto& [output, events] : outputs) {
    Details details;
    Details things;
    for (const auto& [what, days] : events) {
      const std::string event = what.first + ", " + what.second;
      details.push_back({event, daysOf(days)});
      for (int day = 0; day < weekdays; ++day) {
        if ((days >> day & 1) != 0) things.push_back({std::string(weekday(day)) + " " + event, ""});
      }
    }
    rows.push_back(
        {keyOf(output), {cellOf(house.names().titleOf(output)), {std::move(details)}}, std::move(things)});
  }
  for (const std::string& hour : house.week().unreadable) {
    rows.push_back({hour, {cellOf(hour), cellOf("not readable")}});
  }
  return rows;
}

/// Texts that are not empty, ten numbers a row.
void addTexts(Rows& rows, const char* kind, int first, int last, auto read) {
  std::map<int, Details> tens;
  for (int number = first; number <= last; ++number) {
    std::string text = label(read(static_cast<Byte>(number)));
    if (!text.empty()) tens[number / 10].push_back({std::to_string(number), std::move(text)});
  }
  for (auto& [ten, texts] : tens) {
    const std::string range =
        std::to_string(std::max(first, ten * 10)) + " to " + std::to_string(std::min(last, ten * 10 + 9));
    rows.push_back({Bytes(kind) + keyOf(ten), {cellOf(kind + (" " + range)), {texts}}, texts});
  }
}

Rows readTexts(HouseView& house) {
  Rows rows;
  constexpr int lastInfrared = 63;
  constexpr int firstDisplay = 6;
  constexpr int lastDisplay = 34;
  addTexts(rows, "infrared", 0, lastInfrared, [&](Byte number) {
    return readTransfer(house.serial(), parameters::infraredText(number), textSize,
                        "infrared text " + std::to_string(number));
  });
  addTexts(rows, "display", firstDisplay, lastDisplay,
           [&](Byte slot) { return readMemory(house.serial(), controller::displayText(slot), textSize); });
  return rows;
}

Rows readModules(HouseView& house) {
  Rows rows;
  for (const Module& module : house.modules()) {
    if (module.record.empty()) {
      rows.push_back({module.serial, {cellOf(module.serial), {}, {}, {}, cellOf(module.obstacle)}});
      continue;
    }
    Cell record = cellOf(numbers(module.record));
    if (!module.obstacle.empty()) record.parts.push_back({"cannot be restored", module.obstacle});
    rows.push_back({module.serial,
                    {cellOf(module.serial), cellOf(module.model), cellOf(module.firmware),
                     cellOf(std::to_string(module.cpuType)), std::move(record)}});
  }
  return rows;
}

Rows readSettings(HouseView& house) {
  const Firmware firmware = readFirmware(house.serial());
  Rows rows;
  const auto add = [&](const char* name, Details parts) {
    rows.push_back({keyOf(static_cast<int>(rows.size())), {cellOf(name), {std::move(parts)}}});
  };
  Details settings;
  for (const char c : firmware.settings) {
    settings.push_back({"setting " + std::to_string(settings.size() + 1), std::to_string(byteValue(c))});
  }
  add("settings", std::move(settings));
  add("controller", {{"", numbers(firmware.controller)}});
  add("kind", {{"", std::to_string(firmware.kind)}});
  add("further", {{"", numbers(firmware.further)}});
  return rows;
}

const Chapter linksChapter{"links",
                           "Links",
                           "A lane for each source, with a line for each of its sub-addresses. A step up in "
                           "a line acts at the rising "
                           "edge, a step down at the falling one.",
                           "There are no links.",
                           {"Link", "Leads to", "Edges", "Parameters"},
                           readLinkRows,
                           drawLinks};

const Chapter weekChapter{
    "week",
    "Week",
    "A lane for all that is switched; days that are the same share a line. Bars above it are switch times, "
    "round bars below it events of the simulation; a number in a bar tells how many meet there. What happens "
    "then is told by two numbers behind the output; their meaning depends on its mode.",
    "There are no switch times.",
    {"Switch time", "Time", "Days", "Switches"},
    readSwitchTimes,
    drawWeek};

const Chapter simulationChapter{
    "simulation",
    "Simulation",
    "The recorded events, which the controller replays: time, two numbers that tell what happens, and days.",
    "There are no recorded events.",
    {"Output", "Events"},
    readSimulation,
    nullptr};

}  // namespace

const std::vector<Chapter>& chapters() {
  static const std::vector<Chapter> all{
      {"outputs",
       "Outputs",
       "What each output does, and what switches it. The numbers are its settings, each behind the place "
       "where "
       "the controller keeps it: 18.low is the lower half of byte 18, 16:0 bit 0 of byte 16, B3 byte 3 of "
       "the "
       "output's block.",
       "No output has a mode or a name.",
       {"Output", "Mode", "Settings", "Switched by"},
       readOutputs,
       nullptr},
      linksChapter,
      {"presets",
       "Presets",
       "Records have the numbers of outputs, 3 to 99: beside one stands the name of the output of that "
       "number, "
       "behind it its four bytes. Records that are zero are left out.",
       "There are no presets.",
       {"Preset", "Delay", "In the simulation", "Records"},
       readPresets,
       nullptr},
      weekChapter,
      simulationChapter,
      {"texts",
       "Texts",
       "Those that are not empty.",
       "All texts are empty.",
       {"Kind", "Texts"},
       readTexts,
       nullptr},
      {"modules",
       "Modules",
       "Parts of the installation that were read one by one, by their serial numbers.",
       "No modules are listed here.",
       {"Serial", "Model", "Firmware", "CPU", "Record"},
       readModules,
       nullptr},
      {"settings",
       "Settings",
       "Of the controller itself. What is not a setting tells its firmware.",
       "",
       {"Part", "Values"},
       readSettings,
       nullptr},
  };
  return all;
}

std::vector<Chapter> weekChapters() {
  return {weekChapter, simulationChapter, linksChapter};
}

}  // namespace velk::cli
