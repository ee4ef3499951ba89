#pragma once

#include <stdexcept>
#include <string>

#include "cli/exit_status.h"
#include "values/bytes.h"

namespace velk::cli {

/// Ends a command: a sentence for the user and the exit status.
struct Failure : std::runtime_error {
  Failure(ExitStatus exitStatus, const std::string& sentence)
      : std::runtime_error(sentence), status(exitStatus) {}

  ExitStatus status;
};

/// Throws a `Failure` that names what was tried, unless the result byte is 0.
void expectDone(Byte result, const std::string& what);

}  // namespace velk::cli
