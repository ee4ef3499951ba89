#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "cli/shared/exit_status.h"

namespace velk::cli {

/// Ends a command: a sentence for the user and the exit status.
struct Failure : std::runtime_error {
  Failure(ExitStatus exitStatus, const std::string& sentence, std::optional<int> code = {})
      : std::runtime_error(sentence), status(exitStatus), result(code) {}

  ExitStatus status;
  std::optional<int> result;  ///< that of the method that has failed
};

/// Says on standard error what has failed: the sentence behind the program's name or, for programs, a line
///
///     {"error":{"code":"link","status":4,"result":252,"text":"cannot open ..."}}
///
/// where `result` stands only when a method has ended with it.
void tell(std::string_view program, const Failure& failure, bool asJson);

}  // namespace velk::cli
