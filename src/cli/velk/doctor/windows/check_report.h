#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "cli/shared/json.h"

/// What a check of the system came to.
namespace velk::cli {

enum class Outcome : std::uint8_t { passed, failed, leftOut };

struct Finding {
  Outcome outcome;
  std::string detail;  ///< what was measured, what failed with its codes, or why it was left out
};

/// Passed unless there is a fault.
inline Finding findingOf(const std::string& fault, const std::string& detail = {}) {
  return fault.empty() ? Finding{Outcome::passed, detail} : Finding{Outcome::failed, fault};
}

inline Finding leftOut(const std::string& reason) {
  return {Outcome::leftOut, reason};
}

/// Prints a line for each fact and check as it comes, so that a check that breaks off tells how far it went;
/// or all of it as JSON at the end.
class CheckReport {
 public:
  explicit CheckReport(bool json) : json_(json) {}

  void fact(const std::string& name, const std::string& text);
  void add(const std::string& name, std::string_view whatIsDone, const Finding& finding);

  /// The last line. Returns the exit status: success unless a check failed.
  int finish();

 private:
  bool json_;
  Json facts_ = Json::object();
  Json checks_ = Json::array();
  std::array<int, 3> counts_{};
};

}  // namespace velk::cli
