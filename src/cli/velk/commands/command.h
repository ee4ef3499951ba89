#pragma once

#include <functional>
#include <iostream>
#include <memory>
#include <string>

#include "cli/shared/command_line.h"
#include "cli/shared/failure.h"
#include "cli/shared/json.h"
#include "cli/shared/table.h"
#include "cli/velk/connection/link_choice.h"
#include "cli/velk/things/words.h"

/// The commands of `velk`, one file each but for the lists. Each adds itself to the command line and, when it
/// is named there, leaves in `run` what it has to do. Data go to standard output, everything else to standard
/// error.
namespace velk::cli {

/// Carries a command out; returns the exit status.
using Run = std::function<int()>;

/// Options of every command that talks to a controller.
struct LinkedOptions {
  LinkChoice link;
  bool json = false;

  void declare(const CommandLine& line) {
    link.declare(line);
    line.flag("--json", json, "Print JSON");
  }
};

/// Adds a command. `carryOut` is called with its options, which `declare` has put on the command line.
template <class Options, class CarryOut>
CommandLine addCommand(const CommandLine& velk, Run& run, const std::string& name, const std::string& help,
                       const std::string& examples, CarryOut carryOut) {
  const auto options = std::make_shared<Options>();
  CommandLine line = velk.addCommand(
      name, help, [&run, options, carryOut] { run = [options, carryOut] { return carryOut(*options); }; });
  options->declare(line);
  line.footer("\nExamples:\n" + examples);
  return line;
}

void addCall(const CommandLine& velk, Run& run);
void addMethods(const CommandLine& velk, Run& run);
void addStatus(const CommandLine& velk, Run& run);
void addOutputs(const CommandLine& velk, Run& run);
void addOutput(const CommandLine& velk, Run& run);
void addClock(const CommandLine& velk, Run& run);
void addLinks(const CommandLine& velk, Run& run);
void addPresets(const CommandLine& velk, Run& run);
void addPreset(const CommandLine& velk, Run& run);
void addSwitchTimes(const CommandLine& velk, Run& run);
void addSimulation(const CommandLine& velk, Run& run);
void addModules(const CommandLine& velk, Run& run);
void addInfraredText(const CommandLine& velk, Run& run);
void addLanguage(const CommandLine& velk, Run& run);
void addBackup(const CommandLine& velk, Run& run);
void addDiff(const CommandLine& velk, Run& run);
void addRestore(const CommandLine& velk, Run& run);
void addWeek(const CommandLine& velk, Run& run);
void addDoctor(const CommandLine& velk, Run& run);
void addCompletion(const CommandLine& velk, Run& run);

}  // namespace velk::cli
