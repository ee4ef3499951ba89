#pragma once

#include <string>

#include "cli/shared/json.h"
#include "values/bytes.h"

namespace velk::cli {

/// A module on the bus with its configuration record.
struct Module {
  std::string serial;  ///< six digits
  std::string model;
  Byte cpuType = 0;
  std::string firmware;
  Bytes record;
  bool known = false;    ///< its model is: the record was read from piece 1 on and is translated
  std::string obstacle;  ///< why the record cannot be written back; empty when it can
};

/// Why a record cannot be written back; empty when it can.
std::string obstacleOf(const Module& module);

/// "module 090500".
std::string titleOf(const Module& module);

Json jsonOf(const Module& module);
Module moduleOfJson(const Json& json);
}  // namespace velk::cli
