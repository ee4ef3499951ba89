#pragma once

#include <string>
#include <string_view>

#include "modules/identity.h"
#include "modules/mailbox.h"

namespace velk::modules {

/// One module record, as `Module` hands it in and out.
struct ModuleAccess {
  std::string_view serialNumber;
  Bytes& data;
  Byte& offset;
  std::string& model;
  Byte& cpuType;
  std::string& firmware;
};

/// Reads or writes the record of one module. `result` is the code set last, also when a run-time error ends
/// the method; throws `Stop` for the codes that end it at once.
void Module(const Mailbox& mailbox, std::string_view readOrWrite, const ModuleAccess& access,
            Identity& identity, Byte& result);

}  // namespace velk::modules
