#pragma once

#include <string>

#include "cli/shared/command_line.h"

namespace velk::cli {

/// Asks a person, who may also end the program. Says that nothing is written when the answer is no.
bool agreed(const std::string& question);

/// Options of the commands that write much at once, and what they ask before.
struct Consent {
  bool dryRun = false;
  bool yes = false;
  bool otherHouse = false;

  void declare(const CommandLine& line);

  /// Throws `Failure` when somebody has to be asked and nobody is there.
  void expectSomebody() const;

  /// Whether to write what was shown.
  [[nodiscard]] bool covers() const;

  /// Whether to go on when the controller looks like another house than that of a file.
  /// @param strangeness why it does; empty when it does not
  /// @param deed what --other-house does: "restores it"
  [[nodiscard]] bool covers(const std::string& file, const std::string& strangeness,
                            const std::string& deed) const;
};

}  // namespace velk::cli
