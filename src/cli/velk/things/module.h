#pragma once

#include <string>
#include <vector>

#include "cli/shared/json.h"
#include "cli/velk/things/details.h"
#include "component/serial.h"

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

Module readModule(Serial& serial, const std::string& number);

/// Has the component take the next module for one of an unknown model. Only the controller's own module does
/// not tell its model itself.
void forgetModel(Serial& serial);

/// "module 090500".
std::string titleOf(const Module& module);

Json jsonOf(const Module& module);
Module moduleOfJson(const Json& json);
Details detailsOf(const Module& module);

}  // namespace velk::cli
