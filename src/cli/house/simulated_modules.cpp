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

// The records are written as a host writes them, so that the translation of records is undone in one place.
std::vector<simulator::SimulatedModule> simulatedModules(const std::vector<Module>& modules) {
  constexpr const char* name = "modules";
  std::vector<simulator::SimulatedModule> blank;
  for (const Module& module : modules) blank.push_back(blankModule(module));
  auto mailbox =
      std::make_unique<simulator::MailboxDevice>(std::move(blank), simulator::Faults{}, simulator::Trace{});
  const auto& filled = mailbox->modules();
  simulator::Controller controller;
  controller.attach(std::move(mailbox));
  simulator::LoopbackHost host;
  host.transferTime = std::chrono::milliseconds(1);
  host.listen(name, 1, [&controller] {
    return std::make_unique<simulator::EthernetSSession>(controller, simulator::SessionOptions{});
  });
  Serial serial(host);
  serial.OpenTCP(name, 1);
  for (const Module& module : modules) {
    if (module.obstacle.empty()) writeModule(serial, module);
  }
  return filled;
}

}  // namespace velk::cli
