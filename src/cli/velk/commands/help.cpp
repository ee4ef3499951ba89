#include "cli/velk/commands/command.h"

namespace velk::cli {
namespace {

struct HelpOptions {
  std::string command;

  void declare(const CommandLine& line) {
    line.option("COMMAND", command, "The command; without it all of them are listed").typeName("COMMAND");
  }
};

}  // namespace

void addHelp(const CommandLine& velk, Job& job) {
  addCommand<HelpOptions>(velk, job, "help", "Tell what a command does, and its options",
                          "  velk help\n  velk help restore\n", [&velk](const HelpOptions& options) {
                            std::cout << velk.helpOf(options.command);
                            return success;
                          });
}

}  // namespace velk::cli
