#include <algorithm>

#include "cli/shared/guarded.h"
#include "cli/shared/input.h"
#include "cli/shared/interrupts.h"
#include "cli/shared/line_words.h"
#include "cli/shared/terminal.h"
#include "cli/velk/commands/line.h"
#include "cli/velk/completion/values.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/shared_link.h"
#include "cli/velk/shell/line_editor.h"

namespace velk::cli {
namespace {

constexpr const char* shellName = "shell";

struct ShellOptions {
  LinkChoice link;

  void declare(const CommandLine& line) { link.declare(line); }
};

bool isExit(const std::vector<std::string>& words) {
  return words.size() == 1 && (words.front() == "exit" || words.front() == "quit");
}

/// Carries out lines as they come, on one link.
class Shell {
 public:
  Shell(SharedLink& shared, AddCommands addCommands) : shared_(shared), addCommands_(addCommands) {}

  /// Those of a person; their errors are no error of the shell's.
  int talk() {
    const CommandShape program = shape();
    LineEditor editor("velk> ", [&](const std::string& beforeCursor) {
      return completeLine(program, beforeCursor, valuesAt);
    });
    while (forgetInterrupt()) {
      unwatchInterrupts();
      const auto line = editor.read();
      if (!line || isExit(wordsOf(*line).words)) return success;
      const int status = carryOut(*line, "");
      // What was refused may hold what nobody means to keep, such as a password.
      if (status != wrongUsage && !wordsOf(*line).words.empty()) editor.keep(*line);
    }
    return interrupted;
  }

  /// Those of a file or a pipe; returns the status of the last command that has failed.
  int read() {
    int status = success;
    std::size_t number = 0;
    for (std::string line; typed(line) && !isExit(wordsOf(line).words);) {
      const int outcome = carryOut(line, "line " + std::to_string(++number) + ": ");
      if (outcome != success) status = outcome;
    }
    return isInterrupted() ? interrupted : status;
  }

 private:
  static bool typed(std::string& line) {
    unwatchInterrupts();
    return readLine(line);
  }

  /// What can be completed: without what no line takes.
  [[nodiscard]] CommandShape shape() const {
    const CommandLine line("velk", "");
    Job unused;
    addCommands_(line, unused);
    CommandShape shape = line.shape();
    std::erase_if(shape.commands, [](const CommandShape& command) { return command.name == shellName; });
    for (CommandShape& command : shape.commands) {
      std::erase_if(command.options, [](const OptionShape& option) { return option.group == "Link"; });
    }
    for (const char* const name : {"exit", "quit"})
      shape.commands.push_back({.name = name, .help = "End the shell"});
    return shape;
  }

  int carryOut(const std::string& text, const std::string& place) {
    surviveInterrupts();
    const auto outcome = outcomeOf([&] { return carryOut(text); });
    // What a command has told as written is in the file.
    const auto saved = outcomeOf([&] {
      shared_.save();
      return success;
    });
    const auto* const failure = std::get_if<Failure>(&outcome);
    const auto* const unsaved = std::get_if<Failure>(&saved);
    for (const Failure* const each : {failure, unsaved}) {
      if (each == nullptr) continue;
      tell("velk", {each->status, place + each->what(), each->result}, asksForJson(wordsOf(text).words));
    }
    // Nobody reads along any more when that fails.
    if (auto lost = failureOfOutput()) throw Failure(*std::move(lost));
    tellRepeats();
    closeIfLost(failure);
    if (unsaved != nullptr) return unsaved->status;
    return failure != nullptr ? failure->status : std::get<int>(outcome);
  }

  int carryOut(const std::string& text) {
    const Line line(text, addCommands_);
    if (!line.job().carryOut) return success;
    if (line.job().linked && shared_.isHungUp()) {
      std::cerr << "velk: the link was lost and is opened again\n";
      shared_.close();
    }
    return line.job().carryOut();
  }

  void closeIfLost(const Failure* failure) {
    const bool isLostByFailure =
        failure != nullptr && (failure->status == noLink || failure->status == runtimeError ||
                               isLost(static_cast<Byte>(failure->result.value_or(0))));
    if (!shared_.isOpen() || !(isLostByFailure || shared_.isHungUp())) return;
    std::cerr << "velk: the link is lost; the next command opens it again\n";
    shared_.close();
  }

  SharedLink& shared_;
  AddCommands addCommands_;
};

int carryOutShell(const ShellOptions& options, AddCommands addCommands) {
  if (SharedLink::current() != nullptr) throw std::invalid_argument("this is a shell already");
  SharedLink shared(options.link.required());
  shared.connection();
  surviveInterrupts();
  Shell shell(shared, addCommands);
  return inputIsTerminal() && errorIsTerminal() ? shell.talk() : shell.read();
}

}  // namespace

void addShell(const CommandLine& velk, Job& job, AddCommands addCommands) {
  addCommand<ShellOptions>(
      velk, job, shellName, "Carry out commands as they are typed, all on one link",
      "  velk shell --simulate\n"
      "  velk shell --house cottage\n"
      "  velk shell < commands.txt\n"
      "\nA line is a command as it is typed behind velk, without options of the link, which stays open until "
      "exit,\n"
      "quit or Ctrl-D; on Windows Ctrl-Z. Ctrl-C breaks off the command that runs. A link that is lost is "
      "opened\n"
      "again by the next command. A backup file is read by each command and saved at its end.\n"
      "On Linux Tab completes, and what was typed is kept in ~/.local/state/velk/history\n"
      "($XDG_STATE_HOME/velk/history), but not what was refused. On Windows the console edits lines.\n"
      "Lines that no person types are all carried out, also behind one that fails; the exit status is that "
      "of the\n"
      "last that did. See \"velk apply\" for lines that are checked first.\n",
      [addCommands](const ShellOptions& options) { return carryOutShell(options, addCommands); });
}

}  // namespace velk::cli
