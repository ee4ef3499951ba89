#include "cli/velk/things/preset.h"

#include "cli/velk/commands/command.h"

namespace velk::cli {
namespace {

struct PresetOptions : LinkedOptions {
  int number = 0;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("N", number, "The preset").required().range(1, lastPresetNumber);
  }
};

void print(const Preset& preset) {
  std::cout << named("preset " + std::to_string(preset.number), preset.text) << ": delay "
            << int{preset.delay1} << (preset.delay2 == 0 ? "" : " and " + std::to_string(preset.delay2))
            << (preset.simulated ? ", in the simulation" : "") << '\n';
  Table table({"Record", "Bytes"});
  for (const Preset::Record& record : preset.records) {
    table.add({std::to_string(record.number), numbers(record.bytes)});
  }
  table.print(std::cout, "all its records are zero");
}

int carryOutPreset(const PresetOptions& options) {
  const auto connection = open(options.link.required());
  const Preset preset = readPreset(connection->serial(), static_cast<Byte>(options.number));
  if (options.json) {
    std::cout << jsonOf(preset) << '\n';
  } else {
    print(preset);
  }
  return success;
}

}  // namespace

void addPreset(const CommandLine& velk, Job& job) {
  addCommand<PresetOptions>(velk, job, "preset", "Show a preset with its records",
                            "  velk preset --simulate 2\n  velk preset 2 --json\n", carryOutPreset);
}

}  // namespace velk::cli
