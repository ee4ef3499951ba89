#pragma once

#include "simulator/controller.h"
#include "simulator/faults.h"
#include "simulator/mailbox.h"
#include "simulator/trace.h"

namespace velk::simulator {

/// Connects the modules of the house to a controller: one or more of most types, with and without
/// identification. Each controller gets modules of its own, which keep what is written to them. `faults` are
/// those that count requests to modules, of which `trace`, when there is one, is told. `others` come as well,
/// in place of those with their numbers. Returns what holds them, which lives as long as the controller.
const MailboxDevice& attachModules(Controller& controller, const Faults& faults = {}, const Trace& trace = {},
                                   std::vector<SimulatedModule> others = {});

}  // namespace velk::simulator
