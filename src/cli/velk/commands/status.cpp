#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

#include "cli/velk/commands/command.h"
#include "cli/velk/connection/link_text.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/things/clock.h"
#include "controller/ctl_init.h"

namespace velk::cli {
namespace {

struct RoundTrips {
  double least;
  double median;
  double p95;
};

/// Of short reads, in milliseconds.
RoundTrips measure(Serial& serial) {
  using Clock = std::chrono::steady_clock;
  constexpr std::size_t reads = 21;
  std::vector<double> times;
  for (std::size_t i = 0; i < reads; ++i) {
    const auto start = Clock::now();
    readMemory(serial, controller::firstSetting, 1);
    times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
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

Interface interfaceOf(const Serial& serial) {
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
  constexpr std::size_t clockEnd = 13;
  Bytes block;
  expectRead([&] { return serial.Ctl_Init("R", block); }, "reading the initialisation block");
  return {.settings = block.substr(0, 3),
          .controller = block.substr(3, 2),
          .kind = byteAt(block, 5),
          .further = block.substr(clockEnd)};
}

Json jsonOf(const Bytes& bytes) {
  Json json = Json::array();
  for (const char c : bytes) json.push_back(byteValue(c));
  return json;
}

int carryOutStatus(const LinkedOptions& options) {
  const LinkOptions link = options.link.required();
  const auto connection = open(link);
  Serial& serial = connection->serial();
  const RoundTrips trips = measure(serial);
  const ClockReading clock = readClock(serial);
  const Firmware firmware = readFirmware(serial);
  const Interface medium = interfaceOf(serial);
  if (options.json) {
    std::cout << Json{{"link", nameOf(link)},
                      {"kind", medium.kind},
                      {"interface", medium.words},
                      {"round_trip_ms", {{"min", trips.least}, {"median", trips.median}, {"p95", trips.p95}}},
                      {"clock", jsonOf(clock)},
                      {"firmware",
                       {{"settings", jsonOf(firmware.settings)},
                        {"controller", jsonOf(firmware.controller)},
                        {"kind", firmware.kind},
                        {"further", jsonOf(firmware.further)}}}}
              << '\n';
    return success;
  }
  std::cout << "link        " << nameOf(link) << "\ninterface   " << medium.words << "\nround trip  min "
            << milliseconds(trips.least) << ", median " << milliseconds(trips.median) << ", p95 "
            << milliseconds(trips.p95) << "\nclock       " << textOf(clock.controller) << ", "
            << deviationOf(clock) << "\nfirmware    controller " << numbers(firmware.controller) << ", kind "
            << int{firmware.kind} << ", further " << numbers(firmware.further) << "\nsettings    "
            << numbers(firmware.settings) << '\n';
  return success;
}

}  // namespace

void addStatus(const CommandLine& velk, Run& run) {
  addCommand<LinkedOptions>(
      velk, run, "status", "Show link, round-trip times, clock and firmware",
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
