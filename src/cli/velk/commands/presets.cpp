#include "cli/velk/commands/command.h"
#include "cli/velk/things/preset.h"

namespace velk::cli {
namespace {

std::string delay2Of(const Preset& preset) {
  return preset.delay2 == 0 ? "" : std::to_string(preset.delay2);
}

int printAll(const LinkedOptions& options) {
  const auto connection = open(options.link.required());
  Json json = Json::array();
  Table table({"Preset", "Text", "Delay 1", "Delay 2", "Simulation"});
  for (Byte number = 1; number <= lastPresetNumber; ++number) {
    const Preset preset = readPreset(connection->serial(), number, Records::withoutMost);
    if (!isUsed(preset)) continue;
    json.push_back({{"preset", number},
                    {"text", preset.text},
                    {"delay1", preset.delay1},
                    {"delay2", preset.delay2},
                    {"simulation", preset.simulated}});
    table.add({std::to_string(number), preset.text, std::to_string(preset.delay1), delay2Of(preset),
               preset.simulated ? "yes" : "no"});
  }
  if (options.json) {
    std::cout << json << '\n';
  } else {
    table.print(std::cout, "there are no presets");
  }
  return success;
}

struct PresetsOptions : LinkedOptions {
  int number = 0;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("N", number, "The preset").required().range(1, lastPresetNumber);
  }
};

int printOne(const PresetsOptions& options) {
  const auto connection = open(options.link.required());
  const Preset preset = readPreset(connection->serial(), static_cast<Byte>(options.number));
  if (options.json) {
    std::cout << jsonOf(preset) << '\n';
    return success;
  }
  std::cout << named("preset " + std::to_string(preset.number), preset.text) << ": delay "
            << int{preset.delay1} << (preset.delay2 == 0 ? "" : " and " + delay2Of(preset))
            << (preset.simulated ? ", in the simulation" : "") << '\n';
  Table table({"Record", "Bytes"});
  for (const Preset::Record& record : preset.records) {
    table.add({std::to_string(record.number), numbers(record.bytes)});
  }
  table.print(std::cout, "all its records are zero");
  return success;
}

}  // namespace

void addPresets(const CommandLine& velk, Run& run) {
  addCommand<LinkedOptions>(velk, run, "presets", "List the presets in use",
                            "  velk presets --simulate\n  velk presets --json\n", printAll);
  addCommand<PresetsOptions>(velk, run, "preset", "Show a preset with its records",
                             "  velk preset --simulate 2\n  velk preset 2 --json\n", printOne);
}

}  // namespace velk::cli
