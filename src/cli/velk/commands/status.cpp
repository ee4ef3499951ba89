#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <optional>

#include "cli/velk/commands/command.h"
#include "cli/velk/connection/link_text.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/transfer.h"
#include "cli/velk/things/clock.h"
#include "controller/ctl_init.h"

namespace velk::cli {
namespace {

/// How long short reads take, in milliseconds.
struct Latency {
  double least;
  double median;
  double p95;
};

Latency measure(Serial& serial) {
  using std::chrono::steady_clock;
  constexpr std::size_t reads = 21;
  std::vector<double> times;
  for (std::size_t i = 0; i < reads; ++i) {
    const auto start = steady_clock::now();
    readMemory(serial, controller::firstSetting, 1);
    times.push_back(std::chrono::duration<double, std::milli>(steady_clock::now() - start).count());
  }
  std::sort(times.begin(), times.end());
  return {.least = times.front(), .median = times[reads / 2], .p95 = times[reads * 95 / 100]};
}

std::string milliseconds(double time) {
  std::array<char, 32> text{};
  const int length = std::snprintf(text.data(), text.size(), "%.3f ms", time);
  return {text.data(), static_cast<std::size_t>(length)};
}

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

/// The bytes of the initialisation block in front of and behind the clock.
struct Firmware {
  Bytes settings;    ///< three
  Bytes controller;  ///< two
  Byte kind;
  Bytes further;  ///< three
};

Firmware readFirmware(Serial& serial) {
  constexpr Byte clockEnd = 13;
  Bytes head;
  Bytes further;
  const auto read = [&](Bytes& part, Byte count, Byte offset) {
    expectRead([&] { return serial.Ctl_Init("R", part, count, offset); }, "reading the initialisation block");
  };
  read(head, 6, 0);
  read(further, 3, clockEnd);
  return {.settings = head.substr(0, 3),
          .controller = head.substr(3, 2),
          .kind = byteAt(head, 5),
          .further = further};
}

struct StatusReport {
  std::string link;
  Latency latency;
  std::optional<ClockReading> clock;  ///< none in a backup
  Firmware firmware;
  Interface medium;
};

StatusReport readStatus(Serial& serial, const LinkOptions& link) {
  return {.link = nameOf(link),
          .latency = measure(serial),
          .clock = link.backup.empty() ? std::optional(readClock(serial)) : std::nullopt,
          .firmware = readFirmware(serial),
          .medium = interfaceOf(serial, link)};
}

Json jsonOf(const Firmware& firmware) {
  return {{"settings", jsonOfBytes(firmware.settings)},
          {"controller", jsonOfBytes(firmware.controller)},
          {"kind", firmware.kind},
          {"further", jsonOfBytes(firmware.further)}};
}

Json jsonOf(const Latency& latency) {
  return {{"min", latency.least}, {"median", latency.median}, {"p95", latency.p95}};
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
            << "round trip  min " << milliseconds(latency.least) << ", median "
            << milliseconds(latency.median) << ", p95 " << milliseconds(latency.p95) << '\n'
            << "clock       "
            << (clock ? textOf(clock->controller) + ", " + deviationOf(*clock) : "none: no backup holds it")
            << '\n'
            << "firmware    controller " << numbers(firmware.controller) << ", kind " << int{firmware.kind}
            << ", further " << numbers(firmware.further) << '\n'
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
