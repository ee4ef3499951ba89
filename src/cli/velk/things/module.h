#pragma once

#include <string>

#include "cli/house/saved_module.h"
#include "cli/velk/things/details.h"
#include "component/serial.h"

namespace velk::cli {

Module readModule(Serial& serial, const std::string& number);

Details detailsOf(const Module& module);

}  // namespace velk::cli
