#pragma once

#include <functional>
#include <string>

#include "link/frames.h"
#include "simulator/controller.h"
#include "simulator/faults.h"

namespace velk::simulator {

/// Takes the lines of a trace. Sessions on several threads may call it at once.
using Trace = std::function<void(const std::string& line)>;

/// One line for a request: "read  16 V 0510  output 5, parameters", "write 1 V 0501 05  output 5, mode".
/// Behind the area letter a "+" marks the high bank; "short" tells that a status alone is asked for.
std::string describe(const link::Request& request);

/// What was answered: the bytes read, "ok" or "status 7".
std::string describe(const Reply& reply);

/// Whether a plan changes how a reply is sent; a status is a reply of its own.
bool isFaulty(const Plan& plan);

/// What was to be answered, and behind it what a plan made of that: "05 (fault: late=1500)", "no reply (fault:
/// silent)". The text alone where nothing was wrong.
std::string withFaults(std::string text, const Plan& plan);

}  // namespace velk::simulator
