#include "cli/velk/commands/command.h"
#include "cli/velk/things/module.h"

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
  std::vector<std::string> failures;
  Table table({"Serial", "Model", "CPU", "Firmware", "Record"});
  for (const std::string& number : options.serials) {
    try {
      const Module module = readModule(connection->serial(), number);
      json.push_back(jsonOf(module));
      table.add({module.serial, module.model, std::to_string(module.cpuType), module.firmware,
                 numbers(module.record)});
    } catch (const Failure& failure) {
      failures.emplace_back(failure.what());
    }
  }
  if (options.json) {
    std::cout << json << '\n';
  } else if (failures.size() < options.serials.size()) {
    table.print(std::cout, "");
  }
  for (const std::string& failure : failures) std::cerr << "velk: " << failure << '\n';
  return failures.empty() ? success : badResult;
}

}  // namespace

void addModules(const CommandLine& velk, Run& run) {
  addCommand<ModulesOptions>(velk, run, "modules", "Show modules by their serial numbers",
                             "  velk modules --simulate 090500 100100\n  velk modules 090500 --json\n"
                             "\nModules that do not answer are told at the end; the exit status is 1 then.\n",
                             carryOutModules);
}

}  // namespace velk::cli
