#include "cli/velk/commands/command.h"
#include "cli/velk/things/output.h"

namespace velk::cli {
namespace {

int carryOutOutputs(const LinkedOptions& options) {
  const auto connection = open(options.link.required());
  Json json = Json::array();
  Table table({"Output", "Name", "Mode", "Kind"});
  for (Byte number = 1; number <= lastOutput; ++number) {
    const Output output = readOutputHead(connection->serial(), number);
    if (output.mode.empty() && output.name.empty()) continue;
    json.push_back({{"output", number}, {"name", output.name}, {"mode", output.mode}});
    table.add({std::to_string(number), output.name, output.mode, std::string(meaningOfMode(output.mode))});
  }
  if (options.json) {
    std::cout << json << '\n';
  } else {
    table.print(std::cout, "no output has a mode");
  }
  return success;
}

}  // namespace

void addOutputs(const CommandLine& velk, Run& run) {
  addCommand<LinkedOptions>(
      velk, run, "outputs", "List the outputs that have a mode or a name",
      "  velk outputs --simulate\n  VELK_LINK=tcp://192.168.1.20:8445 velk outputs --json\n",
      carryOutOutputs);
}

}  // namespace velk::cli
