#include "cli/velk/commands/command.h"
#include "cli/velk/commands/method_call.h"

namespace velk::cli {
namespace {

struct MethodsOptions {
  bool json = false;

  void declare(const CommandLine& line) { line.flag("--json", json, "Print JSON"); }
};

int printMethods(const MethodsOptions& options) {
  std::cout << (options.json ? jsonOfMethods() + '\n' : listOfMethods());
  return success;
}

}  // namespace

void addMethods(const CommandLine& velk, Job& job) {
  addCommand<MethodsOptions>(velk, job, "methods", "List all methods and properties",
                             "  velk methods\n  velk methods --json\n", printMethods);
}

}  // namespace velk::cli
