#pragma once

#include <nlohmann/json.hpp>

namespace velk::cli {

using Json = nlohmann::ordered_json;

}  // namespace velk::cli
