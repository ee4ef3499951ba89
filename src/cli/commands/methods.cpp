#include "cli/call.h"
#include "cli/commands/command.h"

namespace velk::cli {
namespace {

struct MethodsOptions {
  bool json = false;

  void declare(CLI::App& app) { app.add_flag("--json", json, "Print JSON"); }
};

int printMethods(const MethodsOptions& options) {
  std::cout << (options.json ? jsonOfMethods() + '\n' : listOfMethods());
  return success;
}

}  // namespace

void addMethods(CLI::App& velk, Run& run) {
  addCommand<MethodsOptions>(velk, run, "methods", "List all methods and properties",
                             "  velk methods\n  velk methods --json\n", printMethods);
}

}  // namespace velk::cli
