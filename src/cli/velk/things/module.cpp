#include "cli/velk/things/module.h"

#include <algorithm>
#include <array>

#include "cli/velk/connection/expect_done.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/things/words.h"
#include "modules/restoration.h"
#include "values/hex.h"
#include "values/result.h"

namespace velk::cli {
namespace {

std::string obstacleOf(const Module& module) {
  return modules::restorationOf({.serialNumber = module.serial, .known = module.known}, module.record)
      .obstacle;
}

/// Whether a reply may have come too late, so that it would be taken for one about the next module: no
/// answer, a trigger that stayed set, or a piece left out.
bool mayBeLate(const Module& module, Byte result) {
  constexpr std::array<Byte, 3> unanswered{nothingDone, otherFailure, controllerBusy};
  if (result == 0)
    return !modules::isWhole({.serialNumber = module.serial, .known = module.known}, module.record);
  return isLost(result) || std::find(unanswered.begin(), unanswered.end(), result) != unanswered.end();
}

/// The component counts one piece more for a known model.
bool isKnown(const std::string& number, Byte pieces) {
  return pieces == modules::piecesToRead({.serialNumber = number, .known = true}) + 1;
}

}  // namespace

void forgetModel(Serial& serial) {
  // Modules of this type have no identification to ask for, and an empty record is refused: nothing is sent.
  serial.Module("W", "990000", "");
}

std::string titleOf(const Module& module) {
  return "module " + module.serial;
}

Module readModule(Serial& serial, const std::string& number) {
  Module module{.serial = number, .model = {}, .firmware = {}, .record = {}, .obstacle = {}};
  if (modules::isOwnModule(number)) forgetModel(serial);
  Byte offset = 0;
  std::string model;
  const Byte result =
      serial.Module("R", number, module.record, offset, model, module.cpuType, module.firmware);
  module.known = isKnown(number, offset);
  if (mayBeLate(module, result)) retry().pause();
  expectDone(result, "reading module " + number);
  module.model = label(model);
  module.obstacle = obstacleOf(module);
  return module;
}

Json jsonOf(const Module& module) {
  return {{"serial", module.serial},
          {"model", module.model},
          {"cpu", module.cpuType},
          {"firmware", module.firmware},
          {"record", hex(module.record)},
          {"known", module.known},
          {"restorable", module.obstacle.empty()}};
}

Module moduleOfJson(const Json& json) {
  Module module{.serial = json.at("serial").get<std::string>(),
                .model = json.at("model").get<std::string>(),
                .cpuType = json.at("cpu").get<Byte>(),
                .firmware = json.at("firmware").get<std::string>(),
                .record = bytesOfHex(json.at("record").get<std::string>()),
                .obstacle = {}};
  // Older files do not tell. A known model has a name, or the firmware of the series that does not tell it.
  module.known = json.value("known", !module.model.empty() || module.firmware == "1.0");
  module.obstacle = obstacleOf(module);
  if (module.obstacle.empty() && !json.value("restorable", true)) module.obstacle = "its backup says so";
  return module;
}

Details detailsOf(const Module& module) {
  return {{"model", module.model}, {"firmware", module.firmware}, {"record", numbers(module.record)}};
}

}  // namespace velk::cli
