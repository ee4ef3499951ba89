#include "cli/velk/backup/describe.h"

#include <array>
#include <cstdlib>

#include "cli/velk/backup/memory_reader.h"
#include "cli/velk/connection/transfer.h"
#include "cli/velk/things/event.h"
#include "cli/velk/things/output.h"
#include "cli/velk/things/preset.h"
#include "cli/velk/things/soft_link.h"
#include "cli/velk/things/switch_time.h"
#include "cli/velk/things/words.h"
#include "controller/ctl_init.h"
#include "controller/ctl_lang.h"
#include "parameters/ctl_irtext.h"
#include "timed/preset.h"
#include "values/numbers.h"

namespace velk::cli {
namespace {

constexpr std::array<std::string_view, 9> sectionNames{
    "settings", "outputs", "links", "texts", "presets", "switch-times", "simulation", "infrared", "modules"};

constexpr Byte textSize = 16;

Details describeSettings(Serial& serial, int /*number*/) {
  Details details;
  for (const char c : readMemory(serial, controller::firstSetting, 3)) {
    details.push_back({"setting " + std::to_string(details.size() + 1), std::to_string(byteValue(c))});
  }
  return details;
}

Details describeOutput(Serial& serial, int number) {
  return detailsOf(readOutput(serial, static_cast<Byte>(number)));
}

Details describeLinks(Serial& serial, int source) {
  const std::vector<SoftLink> links = readLinks(serial, static_cast<Byte>(source));
  OutputNames names(serial);
  Details all;
  for (Byte sub = 0; sub < linksOfSource; ++sub) {
    for (const Detail& detail : detailsOf(links, sub, names)) {
      all.push_back({std::to_string(source) + "." + std::to_string(sub) + " " + detail.name, detail.text});
    }
  }
  return all;
}

Details describeText(Serial& serial, int slot) {
  return {{"text", label(readMemory(serial, controller::displayText(static_cast<Byte>(slot)), textSize))}};
}

Details describePreset(Serial& serial, int number) {
  OutputNames names(serial);
  Details details = detailsOf(readPreset(serial, static_cast<Byte>(number)), names);
  std::erase_if(details, [](const Detail& detail) { return detail.name == "simulation"; });
  return details;
}

/// The flags of four presets share a byte.
Details describeFlags(Serial& serial, int first) {
  const Byte flags = byteAt(readMemory(serial, timed::presetFlags(static_cast<Byte>(first)), 1), 0);
  Details details;
  for (int i = 0; i < 4; ++i) {
    details.push_back({"preset " + std::to_string(first + i), (flags >> i & 1) != 0 ? "yes" : "no"});
  }
  return details;
}

Details describeSwitchTime(Serial& serial, int block) {
  OutputNames names(serial);
  return detailsOf(readSwitchTime(serial, static_cast<Byte>(block)), names);
}

Details describeEvents(Serial& serial, int number) {
  OutputNames names(serial);
  const auto [day, hour] = std::div(number, hoursOfDay);
  return detailsOf(readHour(serial, static_cast<Byte>(day), static_cast<Byte>(hour)).events, names);
}

Details describeInfrared(Serial& serial, int number) {
  return {{"text", label(readBytes(serial, parameters::infraredText(static_cast<Byte>(number)), textSize))}};
}

struct KindRow {
  ThingKind kind;
  std::size_t section;
  std::string_view title;  ///< the number follows, if it counts
  Details (*describe)(Serial&, int number);
};

constexpr std::array kinds{
    KindRow{ThingKind::settings, 0, "settings", describeSettings},
    KindRow{ThingKind::output, 1, "output ", describeOutput},
    KindRow{ThingKind::links, 2, "links of source ", describeLinks},
    KindRow{ThingKind::displayText, 3, "display text ", describeText},
    KindRow{ThingKind::preset, 4, "preset ", describePreset},
    KindRow{ThingKind::presetFlags, 4, "simulation flags from preset ", describeFlags},
    KindRow{ThingKind::switchTime, 5, "switch time ", describeSwitchTime},
    KindRow{ThingKind::events, 6, "simulation of ", describeEvents},
    KindRow{ThingKind::infraredText, 7, "infrared text ", describeInfrared},
};

const KindRow& rowOf(ThingKind kind) {
  return kinds.at(static_cast<std::size_t>(kind));
}

}  // namespace

std::span<const std::string_view> sections() {
  return sectionNames;
}

std::string_view sectionOf(ThingKind kind) {
  return sectionNames.at(rowOf(kind).section);
}

std::string titleOf(Thing thing) {
  std::string title(rowOf(thing.kind).title);
  if (thing.kind == ThingKind::settings) return title;
  if (thing.kind == ThingKind::events) {
    return title + weekday(thing.number / hoursOfDay) + " " + timeOfDay(thing.number % hoursOfDay, 0);
  }
  return title + std::to_string(thing.number);
}

Details describe(Serial& serial, Thing thing) {
  return rowOf(thing.kind).describe(serial, thing.number);
}

}  // namespace velk::cli
