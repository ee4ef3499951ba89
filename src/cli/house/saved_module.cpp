#include "cli/house/saved_module.h"

#include "modules/restoration.h"
#include "values/hex.h"

namespace velk::cli {

std::string obstacleOf(const Module& module) {
  return modules::restorationOf({.serialNumber = module.serial, .known = module.known}, module.record)
      .obstacle;
}

std::string titleOf(const Module& module) {
  return "module " + module.serial;
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

}  // namespace velk::cli
