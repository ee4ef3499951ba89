#include "cli/house/simulated_modules.h"

#include <array>
#include <memory>

#include "modules/model.h"
#include "modules/restoration.h"
#include "simulator/ethernet_sessions.h"
#include "simulator/loopback_host.h"
#include "simulator/mailbox.h"
#include "values/digits.h"
#include "values/hex.h"

namespace velk::cli {
namespace {

/// The firmware of a module that tells it, as two bytes; some series have a fixed one, which is no such text.
std::array<Byte, 3> versionOf(const Module& module) {
  const bool isTold = module.firmware.size() == 4;
  const Bytes firmware = isTold ? bytesOfHex(module.firmware) : Bytes(2, '\0');
  return {module.cpuType, byteAt(firmware, 0), byteAt(firmware, 1)};
}

/// A name that is in no list, which an empty one is.
constexpr std::string_view unknownModel = "?";

simulator::SimulatedModule blankModule(const Module& module) {
  return simulator::SimulatedModule({.serial = wholeNumber<int>(module.serial).value_or(0),
                                     .skills = simulator::identifies,
                                     .name = module.known ? std::string_view(module.model) : unknownModel,
                                     .version = versionOf(module),
                                     .firstPiece = 0,
                                     .record = {}});
}

/// A controller that has modules and nothing else.
class Bus {
 public:
  explicit Bus(std::vector<simulator::SimulatedModule> modules) : serial_(host_) {
    constexpr const char* name = "modules";
    auto mailbox = std::make_unique<simulator::MailboxDevice>(std::move(modules), simulator::Faults{},
                                                              simulator::Trace{});
    mailbox_ = mailbox.get();
    controller_.attach(std::move(mailbox));
    host_.transferTime = std::chrono::milliseconds(1);
    host_.listen(name, 1, [this] {
      return std::make_unique<simulator::EthernetSSession>(controller_, simulator::SessionOptions{});
    });
    serial_.OpenTCP(name, 1);
  }

  [[nodiscard]] Serial& serial() { return serial_; }
  [[nodiscard]] const std::vector<simulator::SimulatedModule>& modules() const { return mailbox_->modules(); }

 private:
  simulator::Controller controller_;
  simulator::LoopbackHost host_;
  Serial serial_;
  simulator::MailboxDevice* mailbox_ = nullptr;
};

}  // namespace

void forgetModel(Serial& serial) {
  // Modules of this type have no identification to ask for, and an empty record is refused: nothing is sent.
  serial.Module("W", "990000", "");
}

Byte writeModule(Serial& serial, const Module& module) {
  Bytes data =
      modules::restorationOf({.serialNumber = module.serial, .known = module.known}, module.record).data;
  if (modules::isOwnModule(module.serial)) forgetModel(serial);
  return serial.Module("W", module.serial, data);
}

// Records are written and read as a host does, so that their translation has one place.
std::vector<simulator::SimulatedModule> simulatedModules(const std::vector<Module>& modules) {
  std::vector<simulator::SimulatedModule> blank;
  for (const Module& module : modules) {
    if (module.obstacle.empty()) blank.push_back(blankModule(module));
  }
  Bus bus(std::move(blank));
  for (const Module& module : modules) {
    if (module.obstacle.empty()) writeModule(bus.serial(), module);
  }
  return bus.modules();
}

std::vector<Module> savedModules(std::vector<Module> modules,
                                 const std::vector<simulator::SimulatedModule>& simulated) {
  Bus bus(simulated);
  for (Module& module : modules) {
    if (!module.obstacle.empty()) continue;
    if (modules::isOwnModule(module.serial)) forgetModel(bus.serial());
    bus.serial().Module("R", module.serial, module.record);
  }
  return modules;
}

}  // namespace velk::cli
