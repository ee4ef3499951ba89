#include "cli/velk/commands/consent.h"

#include <iostream>

#include "cli/shared/failure.h"
#include "cli/shared/input.h"
#include "cli/shared/interrupts.h"
#include "cli/shared/terminal.h"

namespace velk::cli {

bool agreed(const std::string& question) {
  std::cerr << question << " [y/N] ";
  std::string answer;
  unwatchInterrupts();
  if (!readLine(answer)) std::cerr << '\n';
  watchInterrupts();
  const bool isYes = answer == "y" || answer == "Y" || answer == "yes";
  if (!isYes) std::cerr << "velk: nothing is written\n";
  return isYes;
}

void Consent::declare(const CommandLine& line) {
  line.flag("--dry-run", dryRun, "Show what would change and write nothing");
  line.flag("--yes", yes, "Do not ask");
  line.flag("--other-house", otherHouse, "Do not ask when the controller looks like another house");
}

void Consent::expectSomebody() const {
  if (dryRun || yes || inputIsTerminal()) return;
  throw Failure(wrongUsage, "nobody can be asked here; --yes writes without asking");
}

bool Consent::covers() const {
  return yes || agreed("Write this to the controller?");
}

bool Consent::covers(const std::string& file, const std::string& strangeness, const std::string& deed) const {
  if (strangeness.empty()) return true;
  std::cerr << "velk: " << file << ": this looks like another house: " << strangeness << '\n';
  if (otherHouse || dryRun) return true;
  if (yes || !inputIsTerminal()) {
    throw Failure(wrongUsage, file + ": only --other-house " + deed + " here");
  }
  return agreed("Go on all the same?");
}

}  // namespace velk::cli
