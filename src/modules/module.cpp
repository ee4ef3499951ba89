#include "modules/module.h"

#include "modules/model.h"
#include "modules/module_read.h"
#include "modules/module_write.h"
#include "modules/version.h"
#include "values/result.h"
#include "values/runtime_error.h"

namespace velk::modules {
namespace {

using link::Stop;

/// Modules of one series that do not tell their model.
constexpr SerialRange silentSeries{90250, 90270};

/// The version reading is a method of its own: its run-time errors become its result.
Byte readVersion(const Mailbox& mailbox, std::string_view serialNumber, Identity& identity) {
  try {
    return RXModuleVersie(mailbox, serialNumber, identity);
  } catch (const RuntimeError& error) {
    return resultOfError(error.number());
  }
}

void identify(const Mailbox& mailbox, const ModuleAccess& access, Identity& identity) {
  identity.model = access.model;
  if (const Byte result = readVersion(mailbox, access.serialNumber, identity); result != 0)
    throw Stop{Result{result}};
  if (silentSeries.contains(leadingNumber(access.serialNumber))) {
    identity.known = true;
    identity.model = "MT007/500VA";
    // The caller's model name is left as passed here, and here alone.
    access.cpuType = 48;
    access.firmware = "1.0";
  } else {
    access.model = identity.model;
    access.cpuType = identity.cpuType;
    access.firmware = identity.firmware;
  }
}

}  // namespace

void Module(const Mailbox& mailbox, std::string_view readOrWrite, const ModuleAccess& access,
            Identity& identity, Byte& result) {
  constexpr std::size_t serialLength = 6;
  result = nothingDone;
  if (access.serialNumber.size() != serialLength) throw Stop{badSerialNumber};
  if (!isOwnModule(access.serialNumber)) identify(mailbox, access, identity);
  // Records of known models carry a leading piece that the caller does not count.
  if (identity.known) access.offset = checkedByte(access.offset + 1);
  if (readOrWrite == "R") {
    readModule(mailbox, access, identity, result);
  } else {
    writeModule(mailbox, access, identity, result);
  }
}

}  // namespace velk::modules
