#pragma once

#include <functional>
#include <string>

#include "link/frames.h"
#include "simulator/controller.h"

namespace velk::simulator {

/// Takes the lines of a trace. Sessions on several threads may call it at once.
using Trace = std::function<void(const std::string& line)>;

/// One line for a request: "read  16 V 0510  output 5, parameters", "write 1 V 0501 05  output 5, mode".
/// Behind the area letter a "+" marks the high bank; "short" tells that a status alone is asked for.
std::string describe(const link::Request& request);

/// What was answered: the bytes read, "ok" or "status 7".
std::string describe(const Reply& reply);

}  // namespace velk::simulator
