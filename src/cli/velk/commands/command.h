#pragma once

#include <concepts>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>

#include "cli/shared/command_line.h"
#include "cli/shared/failure.h"
#include "cli/shared/json.h"
#include "cli/shared/table.h"
#include "cli/velk/connection/link_choice.h"
#include "cli/velk/things/words.h"

/// The commands of `velk`, one file each but for the lists. Each adds itself to the command line and, when it
/// is named there, leaves in `job` what it has to do. Data go to standard output, everything else to standard
/// error.
namespace velk::cli {

/// Options of every command that talks to a controller.
struct LinkedOptions {
  LinkChoice link;
  bool json = false;

  void declare(const CommandLine& line) {
    link.declare(line);
    line.flag("--json", json, "Print JSON");
  }
};

/// Options of the commands that change a thing. They look at their words before they open the link and do nothing else
/// there, so that `velk apply` can check many of them first: it takes these commands alone.
struct ChangeOptions : LinkedOptions {
  bool dryRun = false;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.flag("--dry-run", dryRun, "Show what would change and write nothing");
  }
};

/// What a command line has to do.
struct Job {
  /// The command whose options are wanted; empty: those of all. To declare them takes longer than what most commands do.
  std::string only = {};
  std::function<int()> carryOut = {};            ///< returns the exit status
  std::shared_ptr<LinkedOptions> linked = {};    ///< of a command that works on a link
  std::shared_ptr<ChangeOptions> changing = {};  ///< of one that changes a thing
};

template <class Base, class Options>
std::shared_ptr<Base> optionsAs(const std::shared_ptr<Options>& options) {
  if constexpr (std::derived_from<Options, Base>) return options;
  return nullptr;
}

/// Adds a command. `carryOut` is called with its options, which `declare` has put on the command line.
template <class Options, class CarryOut>
CommandLine addCommand(const CommandLine& velk, Job& job, const std::string& name, const std::string& help,
                       const std::string& examples, CarryOut carryOut) {
  const auto options = std::make_shared<Options>();
  CommandLine line = velk.addCommand(name, help, [&job, options, carryOut] {
    job.carryOut = [options, carryOut] { return carryOut(*options); };
    job.linked = optionsAs<LinkedOptions>(options);
    job.changing = optionsAs<ChangeOptions>(options);
  });
  if (!job.only.empty() && job.only != name) return line;
  options->declare(line);
  line.footer("\nExamples:\n" + examples);
  return line;
}

/// Prints a list, for programs or for people, to whom an empty one is told in a sentence.
inline void printList(bool asJson, const Json& json, const Table& table, std::string_view whenEmpty) {
  if (asJson) {
    std::cout << json << '\n';
  } else {
    table.print(std::cout, whenEmpty);
  }
}

void addCall(const CommandLine& velk, Job& job);
void addMethods(const CommandLine& velk, Job& job);
void addStatus(const CommandLine& velk, Job& job);
void addOutputs(const CommandLine& velk, Job& job);
void addOutput(const CommandLine& velk, Job& job);
void addClock(const CommandLine& velk, Job& job);
void addLink(const CommandLine& velk, Job& job);
void addLinks(const CommandLine& velk, Job& job);
void addPresets(const CommandLine& velk, Job& job);
void addPreset(const CommandLine& velk, Job& job);
void addSwitchTime(const CommandLine& velk, Job& job);
void addSwitchTimes(const CommandLine& velk, Job& job);
void addSimulation(const CommandLine& velk, Job& job);
void addModules(const CommandLine& velk, Job& job);
void addInfraredText(const CommandLine& velk, Job& job);
void addLanguage(const CommandLine& velk, Job& job);
void addBackup(const CommandLine& velk, Job& job);
void addDiff(const CommandLine& velk, Job& job);
void addRestore(const CommandLine& velk, Job& job);
void addReplay(const CommandLine& velk, Job& job);
void addWatch(const CommandLine& velk, Job& job);
void addWeek(const CommandLine& velk, Job& job);
void addReport(const CommandLine& velk, Job& job);
void addPorts(const CommandLine& velk, Job& job);
void addDoctor(const CommandLine& velk, Job& job);
void addCompletion(const CommandLine& velk, Job& job);
void addHelp(const CommandLine& velk, Job& job);

/// The command that a line begins with, if its options are all that are wanted.
std::string onlyCommandOf(const std::string& firstWord);

/// Adds all commands; those below carry out lines that name them.
using AddCommands = void (*)(const CommandLine& velk, Job& job);
void addApply(const CommandLine& velk, Job& job, AddCommands addCommands);
void addShell(const CommandLine& velk, Job& job, AddCommands addCommands);

/// What "velk help" tells beside the commands, as the end of a help.
std::string topics();

}  // namespace velk::cli
