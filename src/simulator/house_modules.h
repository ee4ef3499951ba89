#pragma once

#include "simulator/controller.h"
#include "simulator/faults.h"
#include "simulator/mailbox.h"
#include "simulator/trace.h"

namespace velk::simulator {

/// The modules of the house: one or more of most types, with and without identification. `others` come as
/// well, in place of those with their numbers.
std::vector<SimulatedModule> houseModules(std::vector<SimulatedModule> others = {});

/// Connects the modules of the house to a controller. Each controller gets modules of its own, which keep what
/// is written to them. `faults` are those that count requests to modules, of which `trace`, when there is one,
/// is told.
void attachModules(Controller& controller, const Faults& faults = {}, const Trace& trace = {});

}  // namespace velk::simulator
