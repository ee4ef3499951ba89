#pragma once

#include <string>
#include <vector>

#include "cli/house/saved_module.h"
#include "cli/velk/things/details.h"
#include "component/serial.h"

namespace velk::cli {

/// Throws std::invalid_argument with a sentence when one is not six digits.
void requireSerials(const std::vector<std::string>& numbers);

Module readModule(Serial& serial, const std::string& number);

Details detailsOf(const Module& module);

}  // namespace velk::cli
