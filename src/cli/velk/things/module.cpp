#include "cli/velk/things/module.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "cli/house/simulated_modules.h"
#include "cli/velk/connection/expect_done.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/things/words.h"
#include "modules/restoration.h"
#include "values/result.h"

namespace velk::cli {
namespace {

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

void requireSerials(const std::vector<std::string>& numbers) {
  constexpr std::size_t digits = 6;
  for (const std::string& number : numbers) {
    const bool isSerial =
        number.size() == digits && number.find_first_not_of("0123456789") == std::string::npos;
    if (!isSerial) throw std::invalid_argument("\"" + number + "\": a module's serial number has six digits");
  }
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

Details detailsOf(const Module& module) {
  return {{"model", module.model}, {"firmware", module.firmware}, {"record", numbers(module.record)}};
}

}  // namespace velk::cli
