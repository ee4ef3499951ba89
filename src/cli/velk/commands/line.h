#pragma once

#include <string>
#include <vector>

#include "cli/velk/commands/command.h"

namespace velk::cli {

/// A line that holds a command of velk, ready to be carried out on a shared link.
class Line {
 public:
  /// Reads its words; "velk" may stand in front. Throws `Failure`, or std::invalid_argument with a sentence.
  Line(const std::string& text, AddCommands addCommands);
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  /// Those without quotes; none in a line that is empty or a comment.
  [[nodiscard]] const std::vector<std::string>& words() const { return words_; }

  /// What it has to do; nothing when that was only to print help.
  [[nodiscard]] const Job& job() const { return job_; }

 private:
  std::vector<std::string> words_;
  CommandLine velk_;  ///< the job's, which may look at it
  Job job_;
};

}  // namespace velk::cli
