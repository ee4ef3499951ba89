#include <optional>

#include "cli/velk/commands/command.h"
#include "cli/velk/connection/link_text.h"
#include "cli/velk/connection/round_trips.h"
#include "cli/velk/connection/transfer.h"
#include "cli/velk/things/clock.h"
#include "cli/velk/things/firmware.h"
#include "controller/ctl_init.h"

namespace velk::cli {
namespace {

struct Interface {
  std::string kind;
  std::string words;
};

Interface interfaceOf(const Serial& serial, const LinkOptions& link) {
  if (!link.backup.empty()) return {"backup", "none: a backup file"};
  if (!serial.TCP) {
    if (serial.NoEcho) return {"fast", "serial line in fast mode"};
    return {"echo", "serial line in echo mode"};
  }
  if (serial.isKindQ()) return {"Q", "Ethernet, kind Q, which takes a password"};
  return {"S", "Ethernet, kind S, which takes no password"};
}

struct StatusReport {
  std::string link;
  RoundTrips latency;
  std::optional<ClockReading> clock;  ///< none in a backup
  Firmware firmware;
  Interface medium;
};

StatusReport readStatus(Serial& serial, const LinkOptions& link) {
  return {.link = nameOf(link),
          .latency = measureRoundTrips([&] { readMemory(serial, controller::firstSetting, 1); }),
          .clock = link.backup.empty() ? std::optional(readClock(serial)) : std::nullopt,
          .firmware = readFirmware(serial),
          .medium = interfaceOf(serial, link)};
}

Json jsonOf(const StatusReport& status) {
  return {{"link", status.link},
          {"kind", status.medium.kind},
          {"interface", status.medium.words},
          {"round_trip_ms", jsonOf(status.latency)},
          {"clock", status.clock ? jsonOf(*status.clock) : Json()},
          {"firmware", jsonOf(status.firmware)}};
}

void print(const StatusReport& status) {
  const auto& [link, latency, clock, firmware, medium] = status;
  std::cout << "link        " << link << '\n'
            << "interface   " << medium.words << '\n'
            << "round trip  " << textOf(latency) << '\n'
            << "clock       "
            << (clock ? textOf(clock->controller) + ", " + deviationOf(*clock) : "none: no backup holds it")
            << '\n'
            << "firmware    " << textOf(firmware) << '\n'
            << "settings    " << numbers(firmware.settings) << '\n';
}

int carryOutStatus(const LinkedOptions& options) {
  const LinkOptions link = options.link.required();
  const auto connection = open(link);
  const StatusReport status = readStatus(connection->serial(), link);
  if (options.json) {
    std::cout << jsonOf(status) << '\n';
  } else {
    print(status);
  }
  return success;
}

}  // namespace

void addStatus(const CommandLine& velk, Job& job) {
  addCommand<LinkedOptions>(
      velk, job, "status", "Show link, round-trip times, clock and firmware",
      "  velk status --simulate\n  velk status --tcp 192.168.1.20:8445 --password 1234\n"
      "\n"
      "  link        as in VELK_LINK, without the password\n"
      "  interface   what its greeting or the options say\n"
      "  round trip  of 21 reads of one byte\n"
      "  clock       the controller's, and how far it is from the PC's\n"
      "  firmware    the controller's bytes 4 and 5, the kind they tell, bytes 14 to 16 (see Ctl_Init)\n"
      "  settings    bytes 1 to 3, which Ctl_Init writes\n",
      carryOutStatus);
}

}  // namespace velk::cli
