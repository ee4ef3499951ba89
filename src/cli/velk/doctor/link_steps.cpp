#include "cli/velk/doctor/link_steps.h"

#include <algorithm>
#include <array>
#include <iostream>

#include "cli/shared/exit_status.h"
#include "cli/velk/doctor/padded.h"

namespace velk::cli {
namespace {

constexpr std::array<std::string_view, 4> verdictNames{"ok", "advice", "wrong", "-"};

}  // namespace

Step wrongStep(const std::string& name, const std::string& reason) {
  constexpr std::string_view between = "; ";
  const auto end = std::min(reason.find(between), reason.size());
  return {name, Verdict::wrong, reason.substr(0, end),
          reason.substr(std::min(end + between.size(), reason.size()))};
}

bool LinkSteps::add(const Step& step) {
  const std::string_view verdict = verdictNames.at(static_cast<std::size_t>(step.verdict));
  works_ = works_ && step.verdict != Verdict::wrong;
  steps_.push_back({{"step", step.name},
                    {"verdict", verdict},
                    {"text", step.text},
                    {"remedy", step.remedy.empty() ? Json() : Json(step.remedy)}});
  if (!json_) {
    constexpr std::size_t verdictWidth = 8;
    constexpr std::size_t nameWidth = 13;
    std::cout << padded(verdict, verdictWidth) << padded(step.name, nameWidth) << step.text
              << (step.remedy.empty() ? "" : "; ") << step.remedy
              << std::endl;  // NOLINT(performance-avoid-endl): a check that breaks off tells how far it went
  }
  return works_;
}

int LinkSteps::finish(const std::string& link) {
  if (json_) {
    std::cout << Json{{"link", link}, {"works", works_}, {"steps", steps_}} << '\n';
  } else {
    std::cout << link << (works_ ? " works\n" : " does not work\n");
  }
  return works_ ? success : badResult;
}

}  // namespace velk::cli
