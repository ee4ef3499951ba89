#include "cli/velk/commands/command.h"

namespace velk::cli {
namespace {

struct CompletionOptions {
  std::string shell;

  void declare(const CommandLine& line) {
    line.option("SHELL", shell, "The shell").required().oneOf({"bash"});
  }
};

std::string bashScript(const CommandLine& velk) {
  std::string commands;
  std::string cases;
  for (const CommandNames& command : velk.commands()) {
    std::string words;
    for (const std::string& option : command.options) words += " --" + option;
    commands += " " + command.name;
    cases += "    " + command.name + ") words=\"" + words + "\" ;;\n";
  }
  // Where no option begins, bash offers files.
  return "_velk() {\n  local current=${COMP_WORDS[COMP_CWORD]} words=\n  case ${COMP_WORDS[1]} in\n" + cases +
         "  esac\n  [[ $current == -* ]] || words=\n  [ \"$COMP_CWORD\" -ne 1 ] || words=\"" + commands +
         " --help --version\"\n  COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n}\n"
         "complete -o default -F _velk velk\n";
}

}  // namespace

void addCompletion(const CommandLine& velk, Job& job) {
  addCommand<CompletionOptions>(velk, job, "completion", "Print a completion script for a shell",
                                "  source <(velk completion bash)\n",
                                [&velk](const CompletionOptions& /*options*/) {
                                  std::cout << bashScript(velk);
                                  return success;
                                });
}

}  // namespace velk::cli
