#include "cli/things/module.h"

#include "cli/words.h"

namespace velk::cli {

Module readModule(Serial& serial, const std::string& number) {
  Module module{.serial = number, .model = {}, .firmware = {}, .record = {}};
  Byte offset = 0;
  std::string model;
  expectDone(serial.Module("R", number, module.record, offset, model, module.cpuType, module.firmware),
             "reading module " + number);
  module.model = label(model);
  return module;
}

Json jsonOf(const Module& module) {
  return {{"serial", module.serial},
          {"model", module.model},
          {"cpu", module.cpuType},
          {"firmware", module.firmware},
          {"record", hex(module.record)}};
}

Module moduleOfJson(const Json& json) {
  return {.serial = json.at("serial").get<std::string>(),
          .model = json.at("model").get<std::string>(),
          .cpuType = json.at("cpu").get<Byte>(),
          .firmware = json.at("firmware").get<std::string>(),
          .record = bytesOfHex(json.at("record").get<std::string>())};
}

Fields fieldsOf(const Module& module) {
  return {{"model", module.model}, {"firmware", module.firmware}, {"record", numbers(module.record)}};
}

}  // namespace velk::cli
