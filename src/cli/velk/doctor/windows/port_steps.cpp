#include "cli/velk/doctor/port_steps.h"

#include <windows.h>

#include <algorithm>
#include <array>

#include "cli/shared/windows/wide.h"
#include "cli/velk/connection/serial_ports.h"

namespace velk::cli {
namespace {

/// Names of ports have no case.
bool isSame(const std::string& a, const std::string& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char one, char other) {
    constexpr char caseBit = 0x20;
    return one == other || ((one ^ other) == caseBit && ((one | caseBit) >= 'a' && (one | caseBit) <= 'z'));
  });
}

SerialPortFacts factsOf(const std::string& device) {
  const auto ports = findSerialPorts();
  const auto port = std::find_if(ports.begin(), ports.end(),
                                 [&](const SerialPortFacts& facts) { return isSame(facts.device, device); });
  return port == ports.end() ? SerialPortFacts{} : *port;
}

/// Some drivers make ports that they enter nowhere.
bool hasDevice(const std::string& device) {
  std::array<wchar_t, 512> target{};
  return QueryDosDeviceW(wideOf(device).c_str(), target.data(), static_cast<DWORD>(target.size())) != 0 ||
         GetLastError() == ERROR_INSUFFICIENT_BUFFER;
}

/// By the adapter's own setting, which its driver takes when it starts. Drivers that have none hold nothing
/// back, or do not tell.
class SettingOfAdapter final : public AdapterLatency {
 public:
  explicit SettingOfAdapter(const std::string& device) : facts_(factsOf(device)) {}

  [[nodiscard]] Step whileOpen() const override {
    constexpr int good = 2;  // milliseconds
    if (!facts_.latency) {
      return {"latency", Verdict::unknown, "its driver tells no latency setting", ""};
    }
    const std::string text =
        "the adapter holds back what has come for up to " + std::to_string(*facts_.latency) + " ms";
    if (*facts_.latency <= good) return {"latency", Verdict::fine, text, ""};
    return {"latency", Verdict::advice, text,
            "as an administrator open Device Manager, Ports, " +
                (facts_.adapter.empty() ? facts_.device : facts_.adapter) +
                ", Port Settings, Advanced, and set the latency timer to 1 ms"};
  }

 private:
  SerialPortFacts facts_;
};

}  // namespace

/// Who may have a port, and who has it, opening tells.
bool addPortSteps(LinkSteps& steps, const std::string& device) {
  const SerialPortFacts facts = factsOf(device);
  if (facts.device.empty() && !hasDevice(device)) {
    return steps.add({"device", Verdict::wrong, "there is no " + device,
                      "plug the adapter in; \"velk ports\" lists the ports that there are"});
  }
  steps.add({"device", Verdict::fine, facts.device.empty() ? device : facts.device, ""});
  if (facts.adapter.empty()) {
    return steps.add({"adapter", Verdict::unknown, "the system does not tell what is behind it", ""});
  }
  const std::string usb = facts.usb.empty() ? "" : " (" + facts.usb + ")";
  return steps.add({"adapter", Verdict::fine, facts.adapter + usb + ", driver " + facts.driver, ""});
}

std::unique_ptr<AdapterLatency> watchLatency(const std::string& device) {
  return std::make_unique<SettingOfAdapter>(device);
}

}  // namespace velk::cli
