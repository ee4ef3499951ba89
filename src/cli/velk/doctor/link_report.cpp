#include "cli/velk/doctor/link_report.h"

#include <cmath>
#include <functional>
#include <optional>

#include "cli/shared/failure.h"
#include "cli/velk/connection/link_failure.h"
#include "cli/velk/connection/link_text.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/round_trips.h"
#include "cli/velk/connection/silent_line.h"
#include "cli/velk/connection/transfer.h"
#include "cli/velk/doctor/link_steps.h"
#include "cli/velk/doctor/port_steps.h"
#include "cli/velk/doctor/watched_host.h"
#include "cli/velk/things/clock.h"
#include "cli/velk/things/firmware.h"
#include "controller/ctl_init.h"

namespace velk::cli {
namespace {

using platform::Reach;

std::string after(std::optional<double> time) {
  return time ? " after " + milliseconds(*time) : "";
}

bool addTcpSteps(LinkSteps& steps, const LinkOptions& link, Connection& connection, const WatchedHost& host) {
  const bool greeted = connection.serial().TCP;
  const std::string reason = connection.result() == 0 ? "" : whyNotOpen(link, connection.result(), greeted);
  const Reach::Stage stage =
      greeted ? Reach::Stage::connected : platform::threadHost().socket().reach().stage;
  if (stage == Reach::Stage::lookingUp) return steps.add(wrongStep("name", reason));
  steps.add({"name", Verdict::fine, "found" + after(host.foundAfter()), ""});
  if (stage == Reach::Stage::trying) return steps.add(wrongStep("connection", reason));
  steps.add({"connection", Verdict::fine, "made" + after(host.connectedAfter()), ""});
  if (!greeted) return steps.add(wrongStep("greeting", reason));
  const bool kindQ = connection.serial().isKindQ();
  steps.add({"greeting", Verdict::fine,
             (kindQ ? "an interface of kind Q" : "an interface of kind S") + after(host.greetedAfter()), ""});
  if (connection.result() != 0) return steps.add(wrongStep("password", reason));
  return steps.add({"password", Verdict::fine, kindQ ? "taken" : "none is asked for", ""});
}

/// The first request to a serial line, which tells whether anybody is there.
Step answerStep(const LinkOptions& link, Connection& connection) {
  const auto at = controller::firstSetting;
  const Bytes reply = connection.serial().ReadCom(1, at.high(), at.low(), "V");
  const std::string mode = link.fast ? "fast mode" : "echo mode";
  if (!reply.empty() && !isLost(byteValue(reply.front()))) {
    return {"answer", Verdict::fine, "the interface answers in " + mode, ""};
  }
  const std::string reason = whySilent(link, connection.host());
  if (!reason.empty()) return wrongStep("answer", reason);
  return {"answer", Verdict::advice, "the interface answers in " + mode + ", but not to the first request",
          "if that happens again look at the cable"};
}

bool addSerialSteps(LinkSteps& steps, const LinkOptions& link, Connection& connection,
                    const AdapterLatency& latency) {
  if (connection.result() != 0) {
    return steps.add(wrongStep("opening", whyNotOpen(link, connection.result(), false)));
  }
  steps.add({"opening", Verdict::fine, "at " + std::to_string(link.baud) + " bit/s", ""});
  steps.add(latency.whileOpen());
  return steps.add(answerStep(link, connection));
}

/// How long a read of one byte is on the wire, in milliseconds; in echo mode byte by byte there and back.
double wireTime(const LinkOptions& link) {
  constexpr double bitsPerByte = 10;
  constexpr double echoBytes = 10;
  constexpr double fastBytes = 16;
  return (link.fast ? fastBytes : echoBytes) * bitsPerByte * 1000 / link.baud;
}

Step roundTripStep(const LinkOptions& link, Serial& serial) {
  constexpr double worthATry = 8;  // milliseconds
  const int before = retry().repeated();
  const RoundTrips times = measureRoundTrips([&] { readMemory(serial, controller::firstSetting, 1); });
  if (const int lost = retry().repeated() - before; lost != 0) {
    return {"round trips", Verdict::advice, textOf(times) + ", " + std::to_string(lost) + " lost",
            "look at the cable and at what else uses this network"};
  }
  if (!link.serial.empty() && times.median > wireTime(link) + worthATry) {
    return {"round trips", Verdict::advice,
            textOf(times) + ", where the line takes " + milliseconds(wireTime(link)),
            "the adapter holds back what has come; see \"latency\""};
  }
  return {"round trips", Verdict::fine, textOf(times), ""};
}

Step clockStep(const LinkOptions& link, Serial& serial) {
  constexpr long tolerable = 60;  // seconds
  if (!link.backup.empty()) return {"clock", Verdict::unknown, "no backup holds it", ""};
  const ClockReading clock = readClock(serial);
  const std::string text = textOf(clock.controller) + ", " + deviationOf(clock);
  const bool right = clock.secondsAhead && std::abs(*clock.secondsAhead) <= tolerable && !clock.held;
  if (right) return {"clock", Verdict::fine, text, ""};
  return {"clock", Verdict::advice, text, "\"velk clock set\" sets it"};
}

/// What the controller tells; each of it may fail.
bool addControllerSteps(LinkSteps& steps, const LinkOptions& link, Serial& serial) {
  const std::pair<std::string, std::function<Step()>> all[] = {
      {"round trips", [&] { return roundTripStep(link, serial); }},
      {"clock", [&] { return clockStep(link, serial); }},
      {"firmware", [&] {
         return Step{"firmware", Verdict::fine, textOf(readFirmware(serial)), ""};
       }}};
  for (const auto& [name, step] : all) {
    if (name == "round trips" && !link.backup.empty()) continue;
    try {
      steps.add(step());
    } catch (const Failure& failure) {
      return steps.add(wrongStep(name, failure.what()));
    }
  }
  return true;
}

bool addSteps(LinkSteps& steps, const LinkOptions& link) {
  std::unique_ptr<AdapterLatency> latency;
  if (!link.serial.empty()) {
    if (!addPortSteps(steps, link.serial)) return false;
    latency = watchLatency(link.serial);
  }
  WatchedHost host(platform::threadHost());
  Connection connection(link, host);
  const bool open = !link.tcp.empty()    ? addTcpSteps(steps, link, connection, host)
                    : latency != nullptr ? addSerialSteps(steps, link, connection, *latency)
                                         : true;
  return open && addControllerSteps(steps, link, connection.serial());
}

}  // namespace

int reportLink(const LinkOptions& link, bool json) {
  LinkSteps steps(json);
  addSteps(steps, link);
  return steps.finish(nameOf(link));
}

}  // namespace velk::cli
