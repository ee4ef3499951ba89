#pragma once

#include <stdexcept>
#include <string>

#include "cli/shared/exit_status.h"

namespace velk::cli {

/// Ends a command: a sentence for the user and the exit status.
struct Failure : std::runtime_error {
  Failure(ExitStatus exitStatus, const std::string& sentence)
      : std::runtime_error(sentence), status(exitStatus) {}

  ExitStatus status;
};

}  // namespace velk::cli
