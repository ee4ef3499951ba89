#pragma once

#include "simulator/controller.h"
#include "simulator/faults.h"
#include "simulator/trace.h"

namespace velk::simulator {

/// Connects the modules of the house to a controller: one or more of most types, with and without
/// identification. Each controller gets modules of its own, which keep what is written to them; memory images
/// do not hold it. `faults` are those that count requests to modules, of which `trace`, when there is one, is
/// told.
void attachModules(Controller& controller, const Faults& faults = {}, const Trace& trace = {});

}  // namespace velk::simulator
