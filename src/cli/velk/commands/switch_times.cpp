#include "cli/velk/commands/command.h"
#include "cli/velk/things/switch_time.h"

namespace velk::cli {
namespace {

int carryOutSwitchTimes(const LinkedOptions& options) {
  const auto connection = open(options.link.required());
  Json json = Json::array();
  Table table({"Block", "Time", "Days", "Switches"});
  for (int block = 0; block < switchTimes; ++block) {
    const SwitchTime time = readSwitchTime(connection->serial(), static_cast<Byte>(block));
    if (!isUsed(time)) continue;
    json.push_back(jsonOf(time));
    table.add({std::to_string(block), timeOf(time), daysOf(time.days), actionOf(time)});
  }
  if (options.json) {
    std::cout << json << '\n';
  } else {
    table.print(std::cout, "there are no switch times");
  }
  return success;
}

}  // namespace

void addSwitchTimes(const CommandLine& velk, Run& run) {
  addCommand<LinkedOptions>(velk, run, "switch-times", "List the switch times",
                            "  velk switch-times --simulate\n  velk switch-times --json\n",
                            carryOutSwitchTimes);
}

}  // namespace velk::cli
