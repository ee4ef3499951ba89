#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>
#include <memory>
#include <string>

#include "cli/failure.h"
#include "cli/json.h"
#include "cli/link_choice.h"
#include "cli/table.h"
#include "cli/words.h"

/// The commands of `velk`, one file each. Each adds itself to the command line and, when it is named there,
/// leaves in `run` what it has to do. Data go to standard output, everything else to standard error.
namespace velk::cli {

/// Carries a command out; returns the exit status.
using Run = std::function<int()>;

/// Options of every command that talks to a controller.
struct LinkedOptions {
  LinkChoice link;
  bool json = false;

  void declare(CLI::App& app) {
    link.declare(app);
    app.add_flag("--json", json, "Print JSON");
  }
};

/// Adds a command. `carryOut` is called with its options, which `declare` has put on the command line.
template <class Options, class CarryOut>
void addCommand(CLI::App& velk, Run& run, const std::string& name, const std::string& help,
                const std::string& examples, CarryOut carryOut) {
  const auto options = std::make_shared<Options>();
  CLI::App* const app = velk.add_subcommand(name, help);
  options->declare(*app);
  app->footer("\nExamples:\n" + examples);
  app->callback([&run, options, carryOut] { run = [options, carryOut] { return carryOut(*options); }; });
}

void addCall(CLI::App& velk, Run& run);
void addMethods(CLI::App& velk, Run& run);
void addStatus(CLI::App& velk, Run& run);
void addOutputs(CLI::App& velk, Run& run);
void addOutput(CLI::App& velk, Run& run);
void addClock(CLI::App& velk, Run& run);
void addLinks(CLI::App& velk, Run& run);
void addPresets(CLI::App& velk, Run& run);
void addSwitchTimes(CLI::App& velk, Run& run);
void addSimulation(CLI::App& velk, Run& run);
void addModules(CLI::App& velk, Run& run);
void addInfraredText(CLI::App& velk, Run& run);
void addLanguage(CLI::App& velk, Run& run);
void addBackup(CLI::App& velk, Run& run);
void addDiff(CLI::App& velk, Run& run);
void addRestore(CLI::App& velk, Run& run);
void addWeek(CLI::App& velk, Run& run);
void addDoctor(CLI::App& velk, Run& run);
void addCompletion(CLI::App& velk, Run& run);

}  // namespace velk::cli
