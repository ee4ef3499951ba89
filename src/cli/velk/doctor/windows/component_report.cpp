#include "cli/velk/doctor/component_report.h"

#include <iostream>

#include "cli/shared/exit_status.h"
#include "cli/shared/json.h"
#include "cli/shared/table.h"
#include "cli/velk/doctor/component_state.h"

namespace velk::cli {
namespace {

std::string verdictOn(const Registration& registration) {
  if (registration.library.empty()) return "not registered";
  const std::string_view fault = faultOf(registration);
  return fault.empty() ? "registered" : std::string(fault);
}

void print(const ComponentState& state) {
  Table table({"Programs", "For", "State", "File"});
  for (const Registration& row : state.registrations) {
    table.add({nameOf(row.bits), nameOf(row.scope), verdictOn(row), textOf(row.library)});
  }
  table.print(std::cout);
  std::cout << "\nVelkCom.Serial in this " << nameOf(ownBits)
            << " program: " << (state.result == 0 ? "created, and it answers" : failureOf(state)) << '\n';
  const auto remedies = remediesFor(state);
  if (remedies.empty()) return;
  std::cout << "\nTo register it, for everybody as an administrator:\n";
  Table lines({"Programs", "For", "Type"});
  for (const Remedy& row : remedies) lines.add({nameOf(row.bits), nameOf(row.scope), row.command});
  lines.print(std::cout);
}

Json jsonOf(const ComponentState& state) {
  Json json{{"program_bits", ownBits},
            {"created", state.result == 0},
            {"failure", state.result == 0 ? Json() : Json(failureOf(state))},
            {"registrations", Json::array()},
            {"remedies", Json::array()}};
  for (const Registration& row : state.registrations) {
    json["registrations"].push_back({{"bits", row.bits},
                                     {"for", nameOf(row.scope)},
                                     {"state", verdictOn(row)},
                                     {"file", textOf(row.library)}});
  }
  for (const Remedy& row : remediesFor(state)) {
    json["remedies"].push_back({{"bits", row.bits}, {"for", nameOf(row.scope)}, {"command", row.command}});
  }
  return json;
}

}  // namespace

bool componentIsHere() {
  return true;
}

int reportComponent(bool json) {
  const ComponentState state = inspectComponent();
  if (json) {
    std::cout << jsonOf(state) << '\n';
  } else {
    print(state);
  }
  return state.result == 0 ? success : badResult;
}

}  // namespace velk::cli
