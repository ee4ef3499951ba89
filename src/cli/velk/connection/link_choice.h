#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/shared/command_line.h"
#include "cli/velk/connection/connection.h"

namespace velk::cli {

/// The options by which a command takes its link. Without any of them the environment variable VELK_LINK
/// names it.
class LinkChoice {
 public:
  void declare(const CommandLine& line);

  /// Whether one of the options stands on the command line, once that is read.
  [[nodiscard]] bool isGiven() const;

  /// Whether the command line names a link, not the environment.
  [[nodiscard]] bool namesLink() const;

  /// The link that is asked for, if one is: the shared one, where there is one. Throws
  /// std::invalid_argument with a sentence.
  [[nodiscard]] std::optional<LinkOptions> find() const;

  /// The same, but for its trace: nothing is written.
  [[nodiscard]] std::optional<LinkOptions> withoutTrace() const;

  /// As `find`, or what opens none.
  [[nodiscard]] LinkOptions orNone() const;

  /// The link that a command cannot do without. Throws std::invalid_argument as well when there is none.
  [[nodiscard]] LinkOptions required() const;

  /// The house that --house names; empty without it.
  [[nodiscard]] const std::string& house() const { return house_; }

 private:
  void addTrace(LinkOptions& link) const;

  LinkOptions options_;
  std::string text_;
  std::string house_;
  std::string password_;
  std::string trace_;
  int baud_ = LinkOptions().baud;
  int busAddress_ = LinkOptions().busAddress;
  std::vector<Option> declared_;
  std::optional<Option> address_;
  std::optional<Option> traceOption_;
};

/// Opens a link, or hands out the shared one, where there is one. Throws `Failure` with `noLink` when it does
/// not open.
std::shared_ptr<Connection> open(const LinkOptions& link);

/// Opens a link anew. A password that is asked for is kept in it.
std::shared_ptr<Connection> openAnew(LinkOptions& link);

}  // namespace velk::cli
