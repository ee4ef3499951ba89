#include "cli/velk/commands/command.h"
#include "cli/velk/doctor/component_report.h"
#include "cli/velk/doctor/self_check.h"

namespace velk::cli {
namespace {

struct DoctorOptions {
  SelfCheckOptions selfCheck;
  bool check = false;
  std::vector<std::string> withoutRegistration;

  void declare(const CommandLine& line) {
    const Option checks =
        line.flag("--check", check, "Try the component with hosts of this system; some minutes at most");
    line.option("--serial", selfCheck.serial, "Also over two serial ports whose lines are connected")
        .typeName("COM5,COM6")
        .delimiter(',')
        .oneValueEach()
        .needs(checks);
    line.flag("--json", selfCheck.json, "Print JSON");
    // Manifest and folder: how the check starts itself as a program of its own.
    line.option("--without-registration", withoutRegistration, "").group("");
  }
};

int examine(const DoctorOptions& options) {
  const auto& place = options.withoutRegistration;
  if (place.size() == 2) return useWithoutRegistration(place[0], place[1]);
  return options.check ? checkComponent(options.selfCheck) : reportComponent(options.selfCheck.json);
}

}  // namespace

void addDoctor(const CommandLine& velk, Job& job) {
  addCommand<DoctorOptions>(
      velk, job, "doctor", "Windows: tell how the component is registered, or try it, and what to mend",
      "  velk doctor\n  velk doctor --json\n  velk doctor --check > report.txt\n"
      "  velk doctor --check --serial COM5,COM6\n"
      "\nEnds with 0 when a program of this bitness can create the component, or no check has failed,\n"
      "else with 1.\n"
      "--check starts the simulator on free ports of 127.0.0.1, creates the component in programs without\n"
      "registration and in the script hosts of both bitnesses, calls methods of every family, and\n"
      "measures waits and reads. What is registered is used and stays; when nothing is, it is registered\n"
      "for this user, and for everybody when run by an administrator, and that is taken back at the end,\n"
      "or by the next check if this one was killed.\n",
      examine);
}

}  // namespace velk::cli
