#pragma once

#include <string>

#include "cli/house/saved_module.h"
#include "cli/velk/things/details.h"
#include "component/serial.h"

namespace velk::cli {

Module readModule(Serial& serial, const std::string& number);

/// Has the component take the next module for one of an unknown model. Only the controller's own module does
/// not tell its model itself.
void forgetModel(Serial& serial);

Details detailsOf(const Module& module);

}  // namespace velk::cli
