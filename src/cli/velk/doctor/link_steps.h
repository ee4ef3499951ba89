#pragma once

#include <string>
#include <string_view>

#include "cli/shared/json.h"

/// What a check of a link comes to, step by step.
namespace velk::cli {

enum class Verdict : unsigned char {
  fine,
  advice,   ///< it works, and could work better
  wrong,    ///< it does not work
  unknown,  ///< the system does not tell, or there is nothing to look at
};

struct Step {
  std::string name;
  Verdict verdict;
  std::string text;    ///< what was found
  std::string remedy;  ///< what to do; none where there is nothing to do
};

/// A step that is wrong, by a sentence that may tell behind a semicolon what to do.
Step wrongStep(const std::string& name, const std::string& reason);

/// Prints a line for each step as it comes, or all of them as JSON at the end.
class LinkSteps {
 public:
  explicit LinkSteps(bool json) : json_(json) {}

  /// Returns whether the check can go on: nothing is wrong.
  bool add(const Step& step);

  /// Returns the exit status: success when nothing was wrong.
  [[nodiscard]] int finish(const std::string& link);

 private:
  bool json_;
  bool works_ = true;
  Json steps_ = Json::array();
};

}  // namespace velk::cli
