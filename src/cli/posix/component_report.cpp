#include "cli/component_report.h"

#include <iostream>

#include "cli/exit_status.h"
#include "cli/json.h"

namespace velk::cli {

int reportComponent(bool json) {
  constexpr const char* note =
      "The component is for Windows; here programs use the library, and \"velk status\" looks at a link.";
  std::cout << (json ? Json{{"note", note}}.dump() : note) << '\n';
  return success;
}

}  // namespace velk::cli
