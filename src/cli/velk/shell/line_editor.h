#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "cli/velk/shell/line_completion.h"

namespace velk::cli {

/// The lines that a person types on a terminal, behind a prompt on standard error. On Linux with editing, completion by
/// Tab, and a history, which the user's state folder keeps; on Windows as the console edits lines, which has a history
/// of its own.
class LineEditor {
 public:
  /// What may stand in front of the cursor instead.
  using Complete = std::function<LineCompletion(const std::string& beforeCursor)>;

  LineEditor(const std::string& prompt, Complete complete);
  ~LineEditor();
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;

  /// The next line; an empty one at Ctrl-C, none at the end (Ctrl-D, on Windows Ctrl-Z).
  std::optional<std::string> read();

  /// Keeps a line for the next time.
  void keep(const std::string& line);

 private:
  class System;
  std::unique_ptr<System> system_;
};

}  // namespace velk::cli
