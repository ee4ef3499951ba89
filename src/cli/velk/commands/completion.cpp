#include "cli/velk/commands/command.h"
#include "cli/velk/completion/scripts.h"

namespace velk::cli {
namespace {

struct CompletionOptions {
  std::string shell;

  void declare(const CommandLine& line) {
    line.option("SHELL", shell, "The shell").required().oneOf(shells());
  }
};

int printScript(const CompletionOptions& options) {
  std::cout << completionScript(options.shell);
  return success;
}

}  // namespace

void addCompletion(const CommandLine& velk, Job& job) {
  addCommand<CompletionOptions>(
      velk, job, "completion", "Print a completion script for a shell",
      "  source <(velk completion bash)\n"
      "  velk completion zsh > ~/.zfunc/_velk     # in a folder of $fpath\n"
      "  velk completion fish > ~/.config/fish/completions/velk.fish\n"
      "  velk completion powershell >> $PROFILE\n"
      "\nCompletes velk and velk-sim: commands, options, and values such as methods, modes and sections.\n"
      "With a link over TCP, in the line or in VELK_LINK, outputs and presets are named from the "
      "controller.\n",
      printScript);
}

}  // namespace velk::cli
