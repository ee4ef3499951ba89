#include "cli/sim/web/house_json.h"

#include <algorithm>
#include <map>

#include "cli/velk/things/output.h"
#include "cli/velk/things/preset.h"
#include "cli/velk/things/words.h"
#include "memory/map.h"
#include "parameters/layouts.h"
#include "parameters/modes.h"
#include "values/hex.h"

namespace velk::cli::web {
namespace {

using simulator::Store;

constexpr std::size_t textSize = 16;
constexpr int pages = 256;

std::string labelAt(const Store& store, Address at) {
  return label(store.read(at, textSize));
}

std::string modeOf(const Store& store, Byte number) {
  const bool isRoller = store[parameters::rollerMarker(number)] == number;
  return std::string(parameters::codeOf(store[{.page = number, .offset = parameters::modeOffset}], isRoller));
}

Output outputIn(const Store& store, Byte number) {
  Output output{.number = number,
                .name = labelAt(store, outputNameAt(number)),
                .mode = modeOf(store, number),
                .items = {}};
  const auto* const layout = parameters::layoutOf(output.mode);
  if (layout == nullptr) return output;
  for (const parameters::Item& item : layout->items) {
    output.items += decoded(item, store[parameters::addressOf(number, item.area, item.at)]);
  }
  return output;
}

Preset presetIn(const Store& store, Byte number) {
  const Address delays = timed::presetDelays(number);
  Preset preset{.number = number,
                .stored = store.read(timed::presetText(number), presetTextSize),
                .delay1 = store[delays],
                .delay2 = timed::secondDelay(store[delays], store[delays.next()]),
                .simulated = (store[timed::presetFlags(number)] & timed::presetFlag(number)) != 0,
                .records = {}};
  for (Byte record = firstPresetRecord; record <= lastPresetRecord; ++record) {
    Bytes bytes = store.read(timed::presetRecord(number, record), presetRecordSize);
    if (bytes != Bytes(presetRecordSize, '\0')) preset.records.emplace(record, std::move(bytes));
  }
  return preset;
}

Json outputsOf(const Store& store) {
  Json list = Json::array();
  for (Byte number = 1; number <= parameters::lastOutput; ++number) {
    const Output output = outputIn(store, number);
    if (output.mode.empty() && output.name.empty()) continue;
    Json json = cli::jsonOf(output);
    json["meaning"] = meaningOfMode(output.mode);
    list.push_back(std::move(json));
  }
  return list;
}

Json presetsOf(const Store& store) {
  Json list = Json::array();
  for (Byte number = 1; number <= lastPreset; ++number) {
    const Preset preset = presetIn(store, number);
    if (!isUsed(preset)) continue;
    Json json = jsonOfHead(preset);
    json["records"] = Json::array();
    for (const auto& [record, bytes] : preset.records) {
      json["records"].push_back({{"record", record},
                                 {"name", labelAt(store, outputNameAt(record))},
                                 {"bytes", jsonOfBytes(bytes)}});
    }
    list.push_back(std::move(json));
  }
  return list;
}

/// The texts of a kind, each 16 bytes, wherever the map has them.
Json textsOf(const Store& store, ThingKind kind) {
  Json list = Json::array();
  for (const memory::Region& region : memory::regions()) {
    if (region.kind != kind) continue;
    for (int page = region.firstPage; page <= region.lastPage; ++page) {
      for (int offset = region.firstOffset; offset <= region.lastOffset; offset += textSize) {
        const Address at{
            .area = region.area, .page = static_cast<Byte>(page), .offset = static_cast<Byte>(offset)};
        const std::string text = labelAt(store, at);
        if (!text.empty()) {
          list.push_back({{"number", region.first(page, offset)}, {"at", keyOf(at)}, {"text", text}});
        }
      }
    }
  }
  return list;
}

Json modulesOf(const std::vector<simulator::SimulatedModule>& modules) {
  constexpr std::size_t nameSize = 12;
  std::map<int, Json> bySerial;
  for (const auto& module : modules) {
    const bool tells = module.can(simulator::identifies);
    const Bytes& told = module.identification();
    const std::string serial = std::to_string(module.serial());
    bySerial[module.serial()] =
        Json{{"serial", std::string(6 - std::min<std::size_t>(serial.size(), 6), '0') + serial},
             {"name", tells ? label(told.substr(0, nameSize)) : ""},
             {"cpu", tells ? byteAt(told, nameSize) : Byte{0}},
             {"firmware", tells ? hex(told.substr(nameSize + 1, 2)) : ""}};
  }
  Json list = Json::array();
  for (auto& [serial, json] : bySerial) list.push_back(std::move(json));
  return list;
}

/// What has no kind in the map is called by its region, up to a comma: "clock", "mailbox".
std::string groupOf(const memory::Region& region) {
  return std::string(region.name.substr(0, region.name.find(',')));
}

struct Group {
  std::string_view name;
  std::string_view title;  ///< "%" stands for the number
};

constexpr std::array groups{
    Group{"settings", "settings"},
    Group{"output", "output %"},
    Group{"links", "soft links of %"},
    Group{"display text", "display text %"},
    Group{"preset", "preset %"},
    Group{"preset flags", "presets from %, simulation"},
    Group{"switch time", "switch time %"},
    Group{"simulated hour", "%"},
    Group{"infrared text", "infrared text %"},
};

std::string titleOf(const Thing& thing) {
  std::string title(groups.at(static_cast<std::size_t>(thing.kind)).title);
  const std::string number = thing.kind == ThingKind::events ? weekday(thing.number / hoursOfDay) + " " +
                                                                   timeOfDay(thing.number % hoursOfDay, 0)
                                                             : std::to_string(thing.number);
  if (const auto at = title.find('%'); at != std::string::npos) title.replace(at, 1, number);
  return title;
}

/// Runs of bytes that lie one behind the other in a page.
class Runs {
 public:
  void add(Address at) {
    if (count_ > 0 && last_.area == at.area && last_.page == at.page && last_.offset + 1 == at.offset) {
      ++count_;
    } else {
      close();
      first_ = at;
      count_ = 1;
    }
    last_ = at;
  }

  Json take() {
    close();
    return std::move(list_);
  }

 private:
  void close() {
    if (count_ > 0)
      list_.push_back({{"area", nameOf(first_.area)},
                       {"page", first_.page},
                       {"offset", first_.offset},
                       {"count", count_}});
    count_ = 0;
  }

  Json list_ = Json::array();
  Address first_;
  Address last_;
  int count_ = 0;
};

template <class Work>
void forEachByte(const Work& work) {
  for (const Area area : {Area::external, Area::block, Area::highBlock}) {
    for (int page = 0; page < pages; ++page) {
      for (int offset = 0; offset < pages; ++offset) {
        work(Address{.area = area, .page = static_cast<Byte>(page), .offset = static_cast<Byte>(offset)});
      }
    }
  }
}

template <class Wanted>
Json linesIn(const Store& store, const Wanted& wanted) {
  Json json = Json::object();
  for (std::size_t i = 0; i < link::areaNames.size(); ++i) {
    const auto area = static_cast<Area>(i);
    Json lines = Json::object();
    for (int page = 0; page < pages; ++page) {
      if (!wanted(area, static_cast<Byte>(page), 0, pages)) continue;
      for (int offset = 0; offset < pages; offset += lineSize) {
        if (!wanted(area, static_cast<Byte>(page), static_cast<std::size_t>(offset), lineSize)) continue;
        const Address at{.area = area, .page = static_cast<Byte>(page), .offset = static_cast<Byte>(offset)};
        lines[digitsOf(at)] = hex(store.read(at, lineSize));
      }
    }
    if (!lines.items().empty()) json[nameOf(area)] = std::move(lines);
  }
  return json;
}

}  // namespace

Json jsonOf(const ServedHouse::State& state) {
  return {{"outputs", outputsOf(state.store)},
          {"presets", presetsOf(state.store)},
          {"displayTexts", textsOf(state.store, ThingKind::displayText)},
          {"infraredTexts", textsOf(state.store, ThingKind::infraredText)},
          {"modules", modulesOf(state.modules)}};
}

Json linesOf(const Store& store) {
  return linesIn(store, [&](Area area, Byte page, std::size_t offset, std::size_t size) {
    const auto bytes = store.page(area, page).subspan(offset, size);
    return std::any_of(bytes.begin(), bytes.end(), [](Byte byte) { return byte != 0; });
  });
}

Json changedLines(const Store& before, const Store& now) {
  if (before == now) return Json::object();
  return linesIn(now, [&](Area area, Byte page, std::size_t offset, std::size_t size) {
    const auto old = before.page(area, page).subspan(offset, size);
    return !std::equal(old.begin(), old.end(), now.page(area, page).subspan(offset, size).begin());
  });
}

Json jsonOfThings() {
  std::map<Thing, Runs> things;
  std::map<std::string, Runs> others;
  forEachByte([&](Address at) {
    const memory::Region* const region = memory::regionAt(at);
    if (region == nullptr) return;
    if (const auto thing = memory::thingAt(at)) {
      things[*thing].add(at);
    } else {
      others[groupOf(*region)].add(at);
    }
  });
  Json list = Json::array();
  for (auto& [thing, runs] : things) {
    const Group& group = groups.at(static_cast<std::size_t>(thing.kind));
    list.push_back({{"kind", group.name}, {"title", titleOf(thing)}, {"runs", runs.take()}});
  }
  for (auto& [name, runs] : others) {
    list.push_back({{"kind", name}, {"title", name}, {"runs", runs.take()}});
  }
  return list;
}

}  // namespace velk::cli::web
