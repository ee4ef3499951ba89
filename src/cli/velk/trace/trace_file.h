#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/shared/files.h"
#include "cli/velk/trace/wire.h"

/// Traces as text: a line for each request and its reply as velk-sim prints them, behind the milliseconds since
/// the link was opened and those until the reply was there. Behind "#" stands what link it was, and when.
namespace velk::cli {

/// Where the lines of a trace go: a file, each line as it comes, or standard error.
class TraceOutput {
 public:
  /// @param path empty: standard error. A file that is there has to be a trace, and is replaced. Throws
  ///   `Failure` with `badFile`.
  explicit TraceOutput(std::string path);

  /// Writes the head of a link's trace. The listener writes the link's events, with times from `now` on; it
  /// throws `Failure` with `badFile`.
  [[nodiscard]] WireListener begin(const std::string& link, std::chrono::nanoseconds now) const;

 private:
  void write(const std::string& line) const;

  std::string path_;
  std::shared_ptr<Sink> sink_;
};

/// A memory request of a trace.
struct TraceLine {
  int number = 0;  ///< of the line
  Exchange exchange;
};

/// A line of a trace that is not understood, or was cut off.
struct OddLine {
  int number = 0;
  std::string why;
};

struct TraceText {
  std::vector<TraceLine> requests;
  std::vector<OddLine> odd;
  bool isTrace = false;  ///< some line is one of a trace, whether it is understood or not
};

/// Reads a trace of velk or velk-sim; anything else that these two print is skipped.
TraceText parseTrace(std::string_view text);

/// One line of an event, without an end.
std::string textOf(const WireEvent& event, std::chrono::nanoseconds start);

}  // namespace velk::cli
