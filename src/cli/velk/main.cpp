#include <iostream>

#include "cli/shared/completion.h"
#include "cli/shared/guarded.h"
#include "cli/shared/manual.h"
#include "cli/shared/native_text.h"
#include "cli/velk/commands/command.h"
#include "cli/velk/completion/values.h"
#include "cli/velk/connection/connection.h"
#include "cli/velk/connection/retry.h"

/// The controller's configuration, and the component's methods, from the command line.
namespace velk::cli {
namespace {

constexpr const char* description =
    "Configures the controller of a home-automation bus.\n\n"
    "Data go to standard output, everything else to standard error.";

constexpr const char* notes =
    "\nThe link:\n"
    "It is given by options, in front of the command or behind it, or, without them, in the environment.\n"
    "  VELK_LINK=tcp://HOST:PORT?password=TEXT&address=N\n"
    "  VELK_LINK=serial:DEVICE?fast&baud=N&address=N\n"
    "  VELK_LINK=simulate:\n"
    "  VELK_LINK=backup:FILE\n"
    "What stands behind \"?\" may be left out; in TEXT \\x26 is \"&\". An IPv6 address stands in brackets:\n"
    "[::1]:8445. A backup file is a house at the desk: commands read and write what it holds, and refuse\n"
    "what no file holds, the clock above all. NO_COLOR switches colours off.\n"
    "\nErrors:\n"
    "With --json an error is a line of JSON on standard error as well:\n"
    "  {\"error\":{\"code\":\"link\",\"status\":4,\"result\":252,\"text\":\"cannot open ...\"}}\n"
    "where code is refused, usage, runtime, link, file or interrupted, status the exit status, and result\n"
    "stands only when a method has ended with it.\n"
    "\nExit status:\n"
    "  0  done\n"
    "  1  the controller refused or did not answer; diff: there are differences, and nothing else;\n"
    "     replay: something was answered differently; restore, replay: declined;\n"
    "     doctor: the component cannot be created, or a check failed\n"
    "  2  the command line is wrong\n"
    "  3  a run-time error of the link\n"
    "  4  the link could not be opened; diff, replay: it failed\n"
    "  5  a file, or standard output, cannot be read or written\n"
    "  6  backup --keep: nothing has changed, and nothing was written\n"
    "  130  Ctrl-C, or what else asks a program to end, came while it read or wrote\n"
    "\nExamples:\n"
    "  velk outputs --simulate\n"
    "  velk backup --tcp 192.168.1.20:8445 --password 1234 house.json\n"
    "  velk help call\n"
    "  velk help changes\n"
    "  velk help houses\n";

void addCommands(const CommandLine& line, Job& job) {
  for (const auto add :
       {addStatus, addOutputs,    addOutput,      addClock,      addLink,    addLinks,        addPresets,
        addPreset, addSwitchTime, addSwitchTimes, addSimulation, addModules, addInfraredText, addLanguage,
        addBackup, addDiff,       addRestore,     addWeek,       addReport,  addPorts,        addReplay,
        addWatch,  addDoctor,     addCompletion,  addCall,       addMethods, addHelp}) {
    add(line, job);
  }
  for (const auto add : {addApply, addShell}) add(line, job, addCommands);
}

int carryOut(int argc, char** argv) {
  const CommandLine line("velk", description);
  line.version("velk " VELK_VERSION);
  line.footer(notes);
  Job job{.only = onlyCommandOf(argc > 1 ? argv[1] : "")};
  addCommands(line, job);
  const auto shape = [&line] {
    CommandShape all = line.shape();
    all.footer += topics();
    return all;
  };
  if (const auto status = printManual(shape, "VelkCom " VELK_VERSION, argc, argv)) return *status;
  if (const auto status = answerShell(shape, argc, argv, valuesAt)) return *status;
  if (const auto status = line.parse(argc, argv)) return *status;
  return job.carryOut();
}

}  // namespace
}  // namespace velk::cli

int main(int argc, char** argv) {
  return velk::cli::withUtf8(argc, argv, [](int count, char** words) {
    const int status = velk::cli::guarded(
        "velk", [&] { return velk::cli::carryOut(count, words); },
        velk::cli::asksForJson({words, words + count}));
    velk::cli::tellRepeats();
    return velk::cli::savingFailed() && status == velk::cli::success ? velk::cli::badFile : status;
  });
}
