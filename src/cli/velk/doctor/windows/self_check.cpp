#include "cli/velk/doctor/self_check.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <stdexcept>

#include "cli/shared/failure.h"
#include "cli/shared/interrupts.h"
#include "cli/shared/serial_line.h"
#include "cli/shared/windows/wide.h"
#include "cli/velk/doctor/windows/check_report.h"
#include "cli/velk/doctor/windows/hosts.h"
#include "cli/velk/doctor/windows/lines.h"
#include "cli/velk/doctor/windows/system_facts.h"
#include "cli/velk/doctor/windows/timings.h"

namespace velk::cli {
namespace {

std::string forWhom(Scope scope) {
  return "for " + nameOf(scope);
}

/// The serial ports of a check.
struct PortPair {
  std::string name;       ///< of the component's
  std::string otherName;  ///< of the simulator's
  int number;
  int otherNumber;
};

std::optional<PortPair> portsOf(const std::vector<std::string>& names) {
  if (names.empty()) return std::nullopt;
  constexpr const char* rule = "--serial takes two ports: COM5,COM6";
  if (names.size() != 2) throw std::invalid_argument(rule);
  PortPair ports{names[0], names[1], portNumber(names[0]), portNumber(names[1])};
  if (ports.number == ports.otherNumber) throw std::invalid_argument(rule);
  return ports;
}

bool isRegistered(const std::function<bool(const Registration&)>& isMeant) {
  const auto all = findRegistrations();
  return std::any_of(all.begin(), all.end(),
                     [&](const Registration& one) { return !one.library.empty() && isMeant(one); });
}

/// Why no host can see what is registered; empty when it should.
std::string whyUnseen() {
  if (tryToCreate() == 0) return {};
  if (isRegistered([](const Registration& one) { return one.scope == Scope::everybody; })) return {};
  if (isWine()) return "Wine does not look at what is registered for a user";
  return isAdministrator() ? "programs of an administrator see only what is registered for everybody" : "";
}

class SelfCheck {
 public:
  explicit SelfCheck(const SelfCheckOptions& options)
      : report_(options.json),
        ports_(portsOf(options.serial)),
        state_(inspectComponent()),
        sides_(sidesOf(state_)),
        registrar_(sides_),
        script_(writeHostScript(registrar_.folder())) {}

  int run() {
    tellFacts();
    if (registrar_.isPending()) {
      tryOut("earlier check", "what it registered and left behind is taken back",
             [&] { return findingOf(registrar_.takeBack()); });
    }
    tryOut("simulator", "velk-sim.exe serves TCP on 127.0.0.1", [&] { return startSimulator(); });
    if (simulator_) checkHosts();
    checkPorts();
    tryOut("waits", "none ends early", checkWaits);
    if (simulator_) {
      tryOut("TCP reads", "of 16 bytes over kind Q, beside a bare client",
             [&] { return checkTcpReads(static_cast<std::uint16_t>(std::stoi(portQ_)), simulatorPassword); });
    }
    return report_.finish();
  }

 private:
  /// Whatever a check throws is its failure, but for what asks the program to end.
  void tryOut(const std::string& name, std::string_view whatIsDone, const std::function<Finding()>& check) {
    checkInterrupt();
    Finding finding;
    try {
      finding = check();
    } catch (const Failure& failure) {
      if (failure.status == interrupted) throw;
      finding = findingOf(failure.what());
    } catch (const std::exception& error) {
      finding = findingOf(error.what());
    }
    report_.add(name, whatIsDone, finding);
  }

  void tellFacts() {
    report_.fact("velk", VELK_VERSION " " + textOf(state_.program));
    for (const auto& [name, text] : systemFacts()) report_.fact(name, text);
    for (const Registration& place : state_.registrations) {
      const std::string name = nameOf(place.bits) + ' ' + forWhom(place.scope);
      report_.fact(name, place.library.empty() ? "not registered" : textOf(place.library));
    }
  }

  [[nodiscard]] std::filesystem::path simulatorFile() const {
    return state_.program.parent_path() / "velk-sim.exe";
  }

  Finding startSimulator() {
    simulator_.emplace(simulatorFile(), Words{L"--tcp-q", L"0", L"--tcp-s", L"0"});
    portQ_ = simulator_->portOf("tcp Q");
    links_ = {{"TCP kind Q", {L"tcp", wideOf(portQ_), wideOf(simulatorPassword), L"Q"}},
              {"TCP kind S", {L"tcp", wideOf(simulator_->portOf("tcp S")), wideOf(simulatorPassword), L"S"}}};
    return findingOf("");
  }

  void checkHosts() {
    for (const Side& side : sides_) {
      tryOut(nameOf(side.bits) + " program without registration",
             "its manifest names VelkCom, which it creates",
             [&] { return checkWithoutRegistration(side, registrar_.folder()); });
    }
    if (std::all_of(sides_.begin(), sides_.end(), [](const Side& side) { return !side.lack.empty(); })) {
      return report_.add("script hosts", "use it", leftOut(sides_.front().lack));
    }
    if (isAnythingRegistered()) {
      report_.add("registration", "by this check", leftOut("there is one, which stays as it is"));
      for (Side& side : sides_) {
        const bool served = isRegistered([&](const Registration& one) { return one.bits == side.bits; });
        if (!served && side.lack.empty()) side.lack = "nothing is registered for such programs";
      }
      return checkScripts("as registered");
    }
    for (const Scope scope : {Scope::user, Scope::everybody}) checkRegistered(scope);
  }

  void checkRegistered(Scope scope) {
    const std::string who = forWhom(scope);
    constexpr const char* registers = "regsvr32 of each bitness registers";
    if (scope == Scope::everybody && !isAdministrator()) {
      return report_.add("registration " + who, registers, leftOut("needs an administrator's rights"));
    }
    tryOut("registration " + who, registers, [&] {
      std::string faults;
      for (const Side& side : sides_) {
        if (side.lack.empty()) faults += registrar_.add(side, scope);
      }
      return findingOf(faults);
    });
    checkScripts(who);
    tryOut("removal " + who, "nothing stays in the registry", [&] {
      const std::string faults = registrar_.takeBack();
      return findingOf(faults.empty() && isAnythingRegistered() ? "something has stayed" : faults);
    });
  }

  void checkScripts(const std::string& who) {
    if (const std::string reason = whyUnseen(); !reason.empty()) {
      return report_.add("script hosts " + who, "use it", leftOut(reason));
    }
    for (const HostLink& link : links_) checkScripts(who, link);
    if (!ports_) return;
    for (const auto& [mode, option] : {std::pair("echo", L"--echo"), std::pair("fast", L"--fast")}) {
      checkSerialScripts(who, mode, option);
    }
  }

  void checkScripts(const std::string& who, const HostLink& link) {
    for (const Side& side : sides_) {
      tryOut(nameOf(side.bits) + " VBScript " + who + ", " + link.name, "calls methods of every family",
             [&] { return checkScriptHost(side, script_, link); });
    }
  }

  void checkSerialScripts(const std::string& who, const std::string& mode, const wchar_t* option) {
    const std::string name = ports_->name + " in " + mode + " mode";
    std::optional<SimulatorProgram> simulator;
    tryOut("simulator, " + mode + " mode", "velk-sim.exe serves " + ports_->otherName, [&] {
      simulator.emplace(simulatorFile(), Words{option, wideOf(ports_->otherName)});
      return findingOf("");
    });
    if (simulator) checkScripts(who, {name, {L"com", std::to_wstring(ports_->number), wideOf(mode)}});
  }

  void checkPorts() {
    if (!ports_) {
      return report_.add("serial ports", "settings, breaks and methods over a line",
                         leftOut("needs two ports whose lines are connected: --serial COM5,COM6"));
    }
    for (const int port : {ports_->number, ports_->otherNumber}) {
      tryOut("COM" + std::to_string(port), "reads its settings back as they were set",
             [&] { return checkLineSettings(port); });
    }
    tryOut("line break", ports_->name + " sends one and " + ports_->otherName + " sees it",
           [&] { return checkBreak(ports_->number, ports_->otherNumber); });
  }

  CheckReport report_;
  std::optional<PortPair> ports_;
  ComponentState state_;
  std::vector<Side> sides_;
  Registrar registrar_;
  std::filesystem::path script_;
  std::optional<SimulatorProgram> simulator_;
  std::string portQ_;
  std::vector<HostLink> links_;
};

}  // namespace

int checkComponent(const SelfCheckOptions& options) {
  watchInterrupts();
  return SelfCheck(options).run();
}

}  // namespace velk::cli
