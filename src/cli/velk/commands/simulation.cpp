#include "cli/velk/commands/command.h"
#include "cli/velk/things/event.h"

namespace velk::cli {
namespace {

int carryOutSimulation(const LinkedOptions& options) {
  const auto connection = open(options.link.required());
  Json json = Json::array();
  Table table({"Day", "Time", "Event"});
  for (const Event& event : readEvents(connection->serial())) {
    json.push_back(jsonOf(event));
    table.add({weekday(event.day), timeOf(event), actionOf(event)});
  }
  if (options.json) {
    std::cout << json << '\n';
  } else {
    table.print(std::cout, "there are no recorded events");
  }
  return success;
}

}  // namespace

void addSimulation(const CommandLine& velk, Run& run) {
  addCommand<LinkedOptions>(velk, run, "simulation", "List the recorded events of the simulation",
                            "  velk simulation --simulate\n  velk simulation --json\n", carryOutSimulation);
}

}  // namespace velk::cli
