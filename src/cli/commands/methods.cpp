#include "cli/call.h"
#include "cli/commands/command.h"

namespace velk::cli {
namespace {

struct MethodsOptions {
  void declare(CLI::App& /*app*/) {}
};

int printMethods(const MethodsOptions& /*options*/) {
  std::cout << listOfMethods();
  return success;
}

}  // namespace

void addMethods(CLI::App& velk, Run& run) {
  addCommand<MethodsOptions>(velk, run, "methods", "List all methods and properties", "  velk methods\n",
                             printMethods);
}

}  // namespace velk::cli
