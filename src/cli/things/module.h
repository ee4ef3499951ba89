#pragma once

#include <string>
#include <vector>

#include "cli/json.h"
#include "cli/things/fields.h"

namespace velk::cli {

/// A module on the bus with its configuration record.
struct Module {
  std::string serial;  ///< six digits
  std::string model;
  Byte cpuType = 0;
  std::string firmware;
  Bytes record;
};

Module readModule(Serial& serial, const std::string& number);

Json jsonOf(const Module& module);
Module moduleOfJson(const Json& json);
Fields fieldsOf(const Module& module);

}  // namespace velk::cli
