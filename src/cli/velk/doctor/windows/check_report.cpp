#include "cli/velk/doctor/windows/check_report.h"

#include <iostream>

#include "cli/shared/exit_status.h"
#include "cli/velk/doctor/padded.h"

namespace velk::cli {
namespace {

constexpr std::array<std::string_view, 3> outcomeNames{"passed", "failed", "left out"};

}  // namespace

void CheckReport::fact(const std::string& name, const std::string& text) {
  facts_[name] = text;
  constexpr std::size_t width = 18;
  if (!json_) std::cout << padded(name, width) << text << std::endl;  // NOLINT(performance-avoid-endl)
}

void CheckReport::add(const std::string& name, std::string_view whatIsDone, const Finding& finding) {
  const auto index = static_cast<std::size_t>(finding.outcome);
  ++counts_[index];
  checks_.push_back(
      {{"check", name}, {"done", whatIsDone}, {"outcome", outcomeNames[index]}, {"detail", finding.detail}});
  if (json_) return;
  constexpr std::size_t width = 10;
  std::cout << padded(outcomeNames[index], width) << name << ": " << whatIsDone;
  if (!finding.detail.empty()) std::cout << " -- " << finding.detail;
  std::cout << std::endl;  // NOLINT(performance-avoid-endl): a check that breaks off tells how far it went
}

int CheckReport::finish() {
  if (json_) {
    std::cout << Json{{"facts", facts_}, {"checks", checks_}} << '\n';
  } else {
    std::cout << counts_[0] << " passed, " << counts_[1] << " failed, " << counts_[2] << " left out\n";
  }
  return counts_[1] == 0 ? success : badResult;
}

}  // namespace velk::cli
