#include <optional>
#include <sstream>

#include "cli/shared/amount.h"
#include "cli/shared/files.h"
#include "cli/shared/guarded.h"
#include "cli/shared/interrupts.h"
#include "cli/velk/commands/line.h"
#include "cli/velk/connection/shared_link.h"

namespace velk::cli {
namespace {

struct ApplyOptions : LinkedOptions {
  std::string file;
  bool dryRun = false;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("FILE", file, "The commands, one a line; \"-\" is standard input").required();
    line.flag("--dry-run", dryRun, "Go through all lines, show what each would change and write nothing");
  }
};

struct FileLine {
  std::size_t number;
  std::string text;
};

/// The standard output of a command, for as long as it lives.
class CapturedOutput {
 public:
  CapturedOutput() : before_(std::cout.rdbuf(text_.rdbuf())) {}
  ~CapturedOutput() { std::cout.rdbuf(before_); }
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  Json json() { return Json::parse(text_); }

 private:
  std::stringstream text_;
  std::streambuf* before_;
};

/// Those of a text, numbered from 1.
std::vector<FileLine> linesOf(const std::string& text) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  std::istringstream in(text.starts_with(byteOrderMark) ? text.substr(byteOrderMark.size()) : text);
  std::vector<FileLine> lines;
  for (std::string line; std::getline(in, line);) lines.push_back({lines.size() + 1, line});
  return lines;
}

/// Carries out the commands of a file on the shared link.
class Application {
 public:
  Application(const ApplyOptions& options, SharedLink& shared, AddCommands addCommands)
      : options_(options), shared_(shared), addCommands_(addCommands) {}

  /// Looks at all lines; returns those that hold a command. Throws `Failure` when one is wrong; each that is was
  /// told then.
  [[nodiscard]] std::vector<FileLine> check() const {
    std::vector<FileLine> commands;
    std::size_t wrong = 0;
    for (const FileLine& line : linesOf(readFile(options_.file))) {
      bool isCommand = false;
      const auto outcome = outcomeOf([&] {
        isCommand = check(line);
        return success;
      });
      if (const auto* const failure = std::get_if<Failure>(&outcome)) {
        ++wrong;
        tell("velk", at(line, *failure), options_.json);
      } else if (isCommand) {
        commands.push_back(line);
      }
    }
    if (wrong == 0) return commands;
    throw Failure(wrongUsage, name() + ": " + amount(wrong, "line") + " to be mended; nothing was done");
  }

  int carryOut(const std::vector<FileLine>& lines) {
    all_ = lines.size();
    if (!lines.empty()) shared_.connection();  // a link that does not open is no line's fault
    surviveInterrupts();
    std::optional<Failure> first;
    for (const FileLine& line : lines) {
      const auto outcome = outcomeOf([&] { return carryOut(line); });
      if (const auto* const failure = std::get_if<Failure>(&outcome)) {
        note(line, *failure);
        if (!first) first = at(line, *failure);
        if (!options_.dryRun || failure->status == interrupted) break;
        tell("velk", at(line, *failure), options_.json);
      } else {
        ++done_;
      }
    }
    if (options_.json) printJson();
    if (first) throw Failure(first->status, sentence(*first), first->result);
    std::cerr << "velk: " << amount(done_, "command")
              << (options_.dryRun ? " gone through, nothing written\n" : " done\n");
    return success;
  }

 private:
  [[nodiscard]] std::string name() const {
    return options_.file == standardStream ? "standard input" : options_.file;
  }

  [[nodiscard]] Failure at(const FileLine& line, const Failure& failure) const {
    return {failure.status, name() + ":" + std::to_string(line.number) + ": " + failure.what(),
            failure.result};
  }

  /// Whether a line holds a command. Throws what is wrong with it.
  [[nodiscard]] bool check(const FileLine& line) const {
    const CapturedOutput unseen;  // of --help, which is no change either
    const Line command(line.text, addCommands_);
    if (command.words().empty()) return false;
    if (!command.job().changing) {
      throw std::invalid_argument("\"" + command.words().front() +
                                  "\" cannot stand here, but commands that change a thing in words");
    }
    shared_.check(command.job().carryOut);
    return true;
  }

  int carryOut(const FileLine& line) {
    checkInterrupt();
    const Line command(line.text, addCommands_);
    ChangeOptions& options = *command.job().changing;
    options.dryRun = options.dryRun || options_.dryRun;
    options.json = options.json || options_.json;
    if (!options_.json) return command.job().carryOut();
    CapturedOutput output;
    const int status = command.job().carryOut();
    commands_.push_back({{"line", line.number}, {"words", command.words()}, {"printed", output.json()}});
    return status;
  }

  void note(const FileLine& line, const Failure& failure) {
    failures_.push_back(
        {{"line", line.number}, {"status", static_cast<int>(failure.status)}, {"text", failure.what()}});
  }

  [[nodiscard]] std::string sentence(const Failure& first) const {
    const std::string all = " of " + amount(all_, "command");
    if (!options_.dryRun) {
      return std::string(first.what()) + "; stopped there, " + std::to_string(done_) + all + " done";
    }
    return name() + ": " + std::to_string(all_ - done_) + all + " would fail";
  }

  void printJson() const {
    std::cout << Json{{"commands", commands_}, {"done", done_}, {"all", all_}, {"failures", failures_}}
              << '\n';
  }

  const ApplyOptions& options_;
  SharedLink& shared_;
  AddCommands addCommands_;
  std::size_t all_ = 0;
  std::size_t done_ = 0;
  Json commands_ = Json::array();
  Json failures_ = Json::array();
};

int carryOutApply(const ApplyOptions& options, AddCommands addCommands) {
  std::optional<SharedLink> own;
  if (SharedLink::current() == nullptr) own.emplace(options.link.required());
  Application application(options, *SharedLink::current(), addCommands);
  return application.carryOut(application.check());
}

}  // namespace

void addApply(const CommandLine& velk, Job& job, AddCommands addCommands) {
  addCommand<ApplyOptions>(
      velk, job, "apply", "Carry out the commands of a file, all on one link",
      "  velk apply changes.txt --dry-run\n"
      "  velk apply --tcp 192.168.1.20:8445 changes.txt\n"
      "  velk apply - < changes.txt\n"
      "\nA line holds a command that changes a thing in words, as it is typed behind velk, with its quotes "
      "but\n"
      "without options of the link; what stands behind # is a comment:\n"
      "  # The hall in winter\n"
      "  output 5 name \"Hall ceiling\"\n"
      "  switch-time 0 set 06:45 weekdays \"Kitchen ceiling=255:2\"\n"
      "All lines are checked before the link is opened: when one is wrong nothing is done, and each that is\n"
      "gets told with its number. What only the controller knows, such as names, is found out when a line's\n"
      "turn comes; the first failure ends it, and what was done before stays done.\n"
      "A dry run goes through all lines, each as if those before it had done nothing.\n",
      [addCommands](const ApplyOptions& options) { return carryOutApply(options, addCommands); });
}

}  // namespace velk::cli
