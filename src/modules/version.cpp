#include "modules/version.h"

#include "modules/model.h"
#include "values/numbers.h"
#include "values/result.h"

namespace velk::modules {
namespace {

constexpr std::size_t comparedLength = 5;

/// Modules without an identification block.
bool hasNoIdentification(std::int16_t type, double serial) {
  // The bound of type 0 is a small whole serial number, as it stands.
  return type == 99 || (type == 4 && serial < 45000) || (type == 1 && serial < 90000) ||
         (type == 0 && serial <= 72) || (type == 98 && serial < 980100);
}

/// Old modules of two families take the request without the read flag.
Byte direction(std::string_view serialNumber, double serial) {
  const std::string_view prefix = slice(serialNumber, 0, 2);
  const bool old = (prefix == "12" && serial < 120800) || (prefix == "04" && serial < 46000);
  return old ? 15 : 15 + readFlag;
}

std::string trimmedBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

/// Takes over the name that the module reports; false when it is not known. This test has no blanks behind
/// the name, so that a part of a listed name counts, and so does no name at all.
bool takeName(std::string_view block, Identity& identity) {
  identity.model = trimmedBlanks(slice(block, 0, 12));
  identity.known = inModelList(slice(identity.model, 0, comparedLength));
  if (!identity.known) identity.model.clear();
  return identity.known;
}

}  // namespace

std::string firmwareText(std::string_view version) {
  return zeroPadded(byteAt(version, 0), 2) + zeroPadded(byteAt(version, 1), 2);
}

Byte RXModuleVersie(const Mailbox& mailbox, std::string_view serialNumber, Identity& identity) {
  identity.cpuType = 0;
  identity.firmware.clear();
  identity.known = inModelList(padded(identity.model, comparedLength));
  const double serial = leadingNumber(serialNumber);
  if (hasNoIdentification(ModuleType(serialNumber), serial)) return 0;

  mailbox.address({.number = 0,
                   .direction = direction(serialNumber, serial),
                   .serialNumber = serialNumber,
                   .padded = true});
  const Exchange exchange = mailbox.run(Purpose::version);
  if (!exchange.trigger.isZero()) return controllerBusy;
  if (const Byte result = resultOf(exchange.reply); result != 0) return result;
  const Bytes block = mailbox.get(pieceSize);
  if (!identity.known && !takeName(block, identity)) return 0;
  identity.cpuType = byteAt(block, 12);
  identity.firmware = firmwareText(slice(block, 13));
  return 0;
}

}  // namespace velk::modules
