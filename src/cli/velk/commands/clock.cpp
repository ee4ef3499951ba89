#include "cli/velk/things/clock.h"

#include "cli/shared/interrupts.h"
#include "cli/velk/commands/command.h"
#include "cli/velk/connection/shared_link.h"

namespace velk::cli {
namespace {

struct ClockOptions : ChangeOptions {
  std::string action;

  void declare(const CommandLine& line) {
    ChangeOptions::declare(line);
    line.option("set", action, "Set the clock to the PC's local time").typeName("[set]").oneOf({"set"});
  }
};

void print(const ClockReading& reading) {
  std::cout << "controller  " << textOf(reading.controller) << "\nPC          " << textOf(reading.computer)
            << " (" << savingOf(reading.computer) << ")\ndeviation   " << deviationOf(reading) << '\n';
}

int carryOutClock(const ClockOptions& options) {
  const auto connection = open(options.link.required());
  const ClockReading before = readClock(connection->serial());
  Json json = jsonOf(before);
  if (!options.json) print(before);
  if (!options.action.empty() && !options.dryRun) {
    // Half an update would leave the clock held.
    watchInterrupts();
    setClock(connection->serial());
    unwatchInterrupts();
    const ClockReading after = readClock(connection->serial());
    json = {{"before", std::move(json)}, {"after", jsonOf(after)}};
    if (!options.json) std::cout << "set; deviation now: " << deviationOf(after) << '\n';
  }
  if (options.json) std::cout << json << '\n';
  if (SharedLink::current() == nullptr) checkInterrupt();
  return success;
}

}  // namespace

void addClock(const CommandLine& velk, Job& job) {
  addCommand<ClockOptions>(velk, job, "clock", "Show the controller's clock beside the PC's, or set it",
                           "  velk clock --simulate\n  velk clock set\n", carryOutClock);
}

}  // namespace velk::cli
