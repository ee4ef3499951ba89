#pragma once

#include <string>

#include "cli/shared/completion.h"

namespace velk::cli {

/// What Tab does to a line.
struct LineCompletion {
  std::size_t replaced = 0;  ///< so many bytes in front of the cursor
  std::string text;          ///< by this
  Candidates choices;        ///< to be shown, when there are several and no more of them can be told yet
};

/// Completes the last word in front of the cursor.
LineCompletion completeLine(const CommandShape& program, const std::string& beforeCursor,
                            const ValuesAt& valuesAt);

}  // namespace velk::cli
