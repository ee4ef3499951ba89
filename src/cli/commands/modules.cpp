#include "cli/commands/command.h"
#include "cli/things/module.h"

namespace velk::cli {
namespace {

struct ModulesOptions : LinkedOptions {
  std::vector<std::string> serials;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("SERIAL", serials, "Serial numbers, six digits each").required();
  }
};

int carryOutModules(const ModulesOptions& options) {
  const auto connection = open(options.link.required());
  Json json = Json::array();
  Table table({"Serial", "Model", "CPU", "Firmware", "Record"});
  for (const std::string& number : options.serials) {
    const Module module = readModule(connection->serial(), number);
    json.push_back(jsonOf(module));
    table.add({module.serial, module.model, std::to_string(module.cpuType), module.firmware,
               numbers(module.record)});
  }
  if (options.json) {
    std::cout << json << '\n';
  } else {
    table.print(std::cout, "");
  }
  return success;
}

}  // namespace

void addModules(const CommandLine& velk, Run& run) {
  addCommand<ModulesOptions>(velk, run, "modules", "Show modules by their serial numbers",
                             "  velk modules --simulate 090500 100100\n  velk modules 090500 --json\n",
                             carryOutModules);
}

}  // namespace velk::cli
