#include "cli/commands/command.h"

namespace velk::cli {
namespace {

struct CompletionOptions {
  std::string shell;

  void declare(CLI::App& app) {
    app.add_option("SHELL", shell, "The shell")->required()->check(CLI::IsMember({"bash"}));
  }
};

/// The words that may follow a command: its long options.
std::string optionsOf(const CLI::App& command) {
  std::string words;
  for (const CLI::Option* const option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) words += " --" + name;
  }
  return words;
}

std::string bashScript(const CLI::App& velk) {
  std::string commands;
  std::string cases;
  for (const CLI::App* const command : velk.get_subcommands([](const CLI::App*) { return true; })) {
    commands += " " + command->get_name();
    cases += "    " + command->get_name() + ") words=\"" + optionsOf(*command) + "\" ;;\n";
  }
  // Where no option begins, bash offers files.
  return "_velk() {\n  local current=${COMP_WORDS[COMP_CWORD]} words=\n  case ${COMP_WORDS[1]} in\n" + cases +
         "  esac\n  [[ $current == -* ]] || words=\n  [ \"$COMP_CWORD\" -ne 1 ] || words=\"" + commands +
         " --help --version\"\n  COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n}\n"
         "complete -o default -F _velk velk\n";
}

}  // namespace

void addCompletion(CLI::App& velk, Run& run) {
  addCommand<CompletionOptions>(velk, run, "completion", "Print a completion script for a shell",
                                "  source <(velk completion bash)\n",
                                [&velk](const CompletionOptions& /*options*/) {
                                  std::cout << bashScript(velk);
                                  return success;
                                });
}

}  // namespace velk::cli
