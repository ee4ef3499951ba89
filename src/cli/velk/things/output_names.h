#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/velk/things/output.h"

namespace velk::cli {

/// The number that somebody typed for an output; none for what is no number, and may be a name. Throws
/// std::invalid_argument with a sentence for a number that no output has.
std::optional<Byte> outputNumberOf(std::string_view typed);

/// The names of a controller's outputs. Each is read once, when it is first asked for.
class OutputNames {
 public:
  explicit OutputNames(Serial& serial) : serial_(serial) {}

  /// As people read it; empty for an output without a name, and for what is no output.
  const std::string& of(Byte number);

  /// "output 5 Hall ceiling".
  std::string titleOf(Byte number);

  /// The output that somebody names: by its number, its name or a beginning of it that no other name has, in
  /// capitals or not. Throws std::invalid_argument with a sentence, which lists them when more than one fit.
  Byte find(const std::string& typed);

 private:
  [[nodiscard]] std::string listOf(const std::vector<Byte>& outputs);

  Serial& serial_;
  std::array<std::optional<std::string>, lastOutput + 1> names_;
};

}  // namespace velk::cli
