#include "cli/velk/commands/command.h"
#include "cli/velk/doctor/component_report.h"
#include "cli/velk/doctor/link_report.h"
#include "cli/velk/doctor/self_check.h"

namespace velk::cli {
namespace {

struct DoctorOptions {
  LinkChoice link;
  bool json = false;
  bool check = false;
  std::vector<std::string> withoutRegistration;

  void declare(const CommandLine& line) {
    link.declare(line);
    line.flag("--check", check,
              "Try the component with hosts of this system; some minutes at most. --serial COM5,COM6:\n"
              "also over two serial ports whose lines are connected");
    line.flag("--json", json, "Print JSON");
    // Manifest and folder: how the check starts itself as a program of its own.
    line.option("--without-registration", withoutRegistration, "").group("");
  }
};

std::vector<std::string> splitAtComma(const std::string& text) {
  const auto comma = text.find(',');
  if (comma == std::string::npos) return {text};
  return {text.substr(0, comma), text.substr(comma + 1)};
}

int check(const DoctorOptions& options) {
  SelfCheckOptions check{.json = options.json};
  if (options.link.namesLink()) {
    const LinkOptions link = options.link.required();
    if (link.serial.empty()) throw std::invalid_argument("--check takes no link but --serial COM5,COM6");
    check.serial = splitAtComma(link.serial);
  }
  return checkComponent(check);
}

int examine(const DoctorOptions& options) {
  const auto& place = options.withoutRegistration;
  if (place.size() == 2) return useWithoutRegistration(place[0], place[1]);
  if (options.check) return check(options);
  // Where there is a component, the environment's link does not hide it.
  const bool wantsLink = options.link.namesLink() || !componentIsHere();
  const auto link = wantsLink ? options.link.find() : std::nullopt;
  return link ? reportLink(*link, options.json) : reportComponent(options.json);
}

}  // namespace

void addDoctor(const CommandLine& velk, Job& job) {
  addCommand<DoctorOptions>(
      velk, job, "doctor", "Check a link step by step; Windows: how the component is registered",
      "  velk doctor --serial /dev/ttyUSB0\n  velk doctor --tcp 192.168.1.20:8445 --password 1234\n"
      "  velk doctor --house cottage --json\n"
      "  velk doctor --check > report.txt\n  velk doctor --check --serial COM5,COM6\n"
      "\nWith a link each step is a line: ok, advice (it works, and could work better), wrong (and what to\n"
      "do; the check ends there) or - (nothing can be told). A serial link: the device, its adapter and\n"
      "driver, who may have it and who has it, opening, how long the adapter holds back what has come,\n"
      "whether the interface answers in this mode. TCP: the host's name, connection, greeting, password.\n"
      "Then round trips, clock and firmware. Nothing is written to the controller.\n"
      "\nWithout one: how the component is registered, on Windows; elsewhere the link of VELK_LINK.\n"
      "\nEnds with 0 when nothing is wrong, or a program of this bitness can create the component, or no\n"
      "check has failed; else with 1.\n"
      "--check starts the simulator on free ports of 127.0.0.1, creates the component in programs without\n"
      "registration and in the script hosts of both bitnesses, calls methods of every family, and\n"
      "measures waits and reads. What is registered is used and stays; when nothing is, it is registered\n"
      "for this user, and for everybody when run by an administrator, and that is taken back at the end,\n"
      "or by the next check if this one was killed.\n",
      examine);
}

}  // namespace velk::cli
