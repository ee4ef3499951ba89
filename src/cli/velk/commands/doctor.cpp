#include "cli/velk/commands/command.h"
#include "cli/velk/doctor/component_report.h"

namespace velk::cli {
namespace {

struct DoctorOptions {
  bool json = false;

  void declare(const CommandLine& line) { line.flag("--json", json, "Print JSON"); }
};

}  // namespace

void addDoctor(const CommandLine& velk, Job& job) {
  addCommand<DoctorOptions>(
      velk, job, "doctor", "Windows: tell how the component is registered, and what to mend",
      "  velk doctor\n  velk doctor --json\n"
      "\nEnds with 0 when a program of this bitness can create the component, else with 1.\n",
      [](const DoctorOptions& options) { return reportComponent(options.json); });
}

}  // namespace velk::cli
