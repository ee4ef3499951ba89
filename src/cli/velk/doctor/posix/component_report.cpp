#include "cli/velk/doctor/component_report.h"

#include <iostream>

#include "cli/shared/exit_status.h"
#include "cli/shared/json.h"
#include "cli/velk/doctor/self_check.h"

namespace velk::cli {

bool componentIsHere() {
  return false;
}

int reportComponent(bool json) {
  constexpr const char* note =
      "The component is for Windows; here programs use the library. \"velk doctor --serial DEVICE\", or with "
      "any "
      "other link, checks the link.";
  std::cout << (json ? Json{{"note", note}}.dump() : note) << '\n';
  return success;
}

int checkComponent(const SelfCheckOptions& options) {
  return reportComponent(options.json);
}

int useWithoutRegistration(const std::string& /*manifest*/, const std::string& /*folder*/) {
  return reportComponent(false);
}

}  // namespace velk::cli
