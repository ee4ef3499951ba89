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

/// What a command prints to a stream, for as long as it lives.
class Captured {
 public:
  explicit Captured(std::ostream& stream) : stream_(stream), before_(stream.rdbuf(text_.rdbuf())) {}
  ~Captured() { stream_.rdbuf(before_); }
  Captured(const Captured&) = delete;
  Captured& operator=(const Captured&) = delete;

  Json json() { return Json::parse(text_); }

 private:
  std::ostream& stream_;
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
    surviveInterrupts();
    if (!lines.empty()) rehearse(lines);
    if (!options_.dryRun) perform(lines);
    if (options_.json) printJson();
    std::cerr << "velk: " << amount(all_, "command")
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
    const Captured unseen(std::cout);  // of --help, which is no change either
    const Line command(line.text, addCommands_);
    if (command.words().empty()) return false;
    if (!command.job().changing) {
      throw std::invalid_argument("\"" + command.words().front() +
                                  "\" cannot stand here, but commands that change a thing in words");
    }
    shared_.check(command.job().carryOut);
    return true;
  }

  /// Carries all out on a draft, where each sees what those before it have changed; a dry run shows that. Throws
  /// `Failure` when some would fail; each that would was told then.
  void rehearse(const std::vector<FileLine>& lines) {
    shared_.beginDraft();
    std::optional<Failure> first;
    std::size_t wrong = 0;
    for (const FileLine& line : lines) {
      const auto failure = failureOf([&] {
        if (options_.dryRun) show(line, true);
        return carryOutUnseen(line);
      });
      if (!failure) {
        if (options_.dryRun) ++done_;
        continue;
      }
      ++wrong;
      note(line, *failure);
      if (!first) first = *failure;
      if (failure->status == interrupted) break;
      tell("velk", at(line, *failure), options_.json);
    }
    shared_.dropDraft();
    if (!first) return;
    if (options_.json) printJson();
    if (first->status == interrupted) throw Failure(*first);
    throw Failure(first->status,
                  name() + ": " + std::to_string(wrong) + " of " + amount(all_, "command") +
                      " would fail; nothing was done",
                  first->result);
  }

  /// Carries them out until one fails.
  void perform(const std::vector<FileLine>& lines) {
    for (const FileLine& line : lines) {
      const auto failure = failureOf([&] { return show(line, false); });
      if (failure) {
        note(line, *failure);
        if (options_.json) printJson();
        const Failure told = at(line, *failure);
        throw Failure(told.status,
                      std::string(told.what()) + "; stopped there, " + std::to_string(done_) + " of " +
                          amount(all_, "command") + " done",
                      told.result);
      }
      ++done_;
    }
  }

  static std::optional<Failure> failureOf(const std::function<int()>& work) {
    auto outcome = outcomeOf([&] {
      checkInterrupt();
      return work();
    });
    auto* const failure = std::get_if<Failure>(&outcome);
    return failure == nullptr ? std::nullopt : std::optional(std::move(*failure));
  }

  int carryOutUnseen(const FileLine& line) {
    const Captured output(std::cout);
    const Captured errors(std::cerr);
    return Line(line.text, addCommands_).job().carryOut();
  }

  int show(const FileLine& line, bool dryRun) {
    const Line command(line.text, addCommands_);
    ChangeOptions& options = *command.job().changing;
    options.dryRun = options.dryRun || dryRun;
    options.json = options.json || options_.json;
    if (!options_.json) return command.job().carryOut();
    Captured output(std::cout);
    const int status = command.job().carryOut();
    commands_.push_back({{"line", line.number}, {"words", command.words()}, {"printed", output.json()}});
    return status;
  }

  void note(const FileLine& line, const Failure& failure) {
    failures_.push_back(
        {{"line", line.number}, {"status", static_cast<int>(failure.status)}, {"text", failure.what()}});
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
      "All lines are checked before the first is carried out: first their words, then what only the "
      "controller\n"
      "knows, such as names, on a draft of the house that each line changes for those behind it. When one "
      "is\n"
      "wrong nothing is done, and each that is gets told with its number. Should a line fail all the same, "
      "it\n"
      "ends there, and what was done before stays done. A dry run shows the draft.\n",
      [addCommands](const ApplyOptions& options) { return carryOutApply(options, addCommands); });
}

}  // namespace velk::cli
