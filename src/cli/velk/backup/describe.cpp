#include "cli/velk/backup/describe.h"

#include <algorithm>
#include <array>

#include "cli/velk/backup/memory_reader.h"
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

Fields describeSettings(Serial& serial, int /*number*/) {
  Fields fields;
  for (const char c : readMemory(serial, controller::firstSetting, 3)) {
    fields.push_back({"setting " + std::to_string(fields.size() + 1), std::to_string(byteValue(c))});
  }
  return fields;
}

Fields describeOutput(Serial& serial, int number) {
  return fieldsOf(readOutput(serial, static_cast<Byte>(number)));
}

Fields describeLinks(Serial& serial, int source) {
  const std::vector<SoftLink> links = readLinks(serial, static_cast<Byte>(source));
  Fields all;
  for (Byte sub = 0; sub < linksOfSource; ++sub) {
    for (const Field& field : fieldsOf(links, sub)) {
      all.push_back({std::to_string(source) + "." + std::to_string(sub) + " " + field.name, field.text});
    }
  }
  return all;
}

Fields describeText(Serial& serial, int slot) {
  return {{"text", label(readMemory(serial, controller::displayText(static_cast<Byte>(slot)), textSize))}};
}

Fields describePreset(Serial& serial, int number) {
  Fields fields = fieldsOf(readPreset(serial, static_cast<Byte>(number)));
  std::erase_if(fields, [](const Field& field) { return field.name == "simulation"; });
  return fields;
}

/// The flags of four presets share a byte.
Fields describeFlags(Serial& serial, int first) {
  const Byte flags = byteAt(readMemory(serial, timed::presetFlags(static_cast<Byte>(first)), 1), 0);
  Fields fields;
  for (int i = 0; i < 4; ++i) {
    fields.push_back({"preset " + std::to_string(first + i), (flags >> i & 1) != 0 ? "yes" : "no"});
  }
  return fields;
}

Fields describeSwitchTime(Serial& serial, int block) {
  return fieldsOf(readSwitchTime(serial, static_cast<Byte>(block)));
}

Fields describeEvents(Serial& serial, int number) {
  return fieldsOf(
      readEvents(serial, static_cast<Byte>(number / hoursOfDay), static_cast<Byte>(number % hoursOfDay)));
}

Fields describeInfrared(Serial& serial, int number) {
  return {{"text", label(readBytes(serial, parameters::infraredText(static_cast<Byte>(number)), textSize))}};
}

struct KindRow {
  ThingKind kind;
  std::size_t section;
  std::string_view title;  ///< the number follows, if it counts
  Fields (*describe)(Serial&, int number);
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

Fields describe(Serial& serial, Thing thing) {
  return rowOf(thing.kind).describe(serial, thing.number);
}

}  // namespace velk::cli
