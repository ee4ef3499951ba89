#pragma once

#include <vector>

#include "cli/house/saved_module.h"
#include "component/serial.h"
#include "simulator/module.h"

namespace velk::cli {

/// Writes what makes a module read as it was saved. Returns the result byte.
Byte writeModule(Serial& serial, const Module& module);

/// Has the component take the next module for one of an unknown model. Only the controller's own module does
/// not tell its model itself.
void forgetModel(Serial& serial);

/// The modules of a backup as the simulated bus has them: each reads as it was saved. Those that cannot be
/// written back (see `Module::obstacle`) are left out.
std::vector<simulator::SimulatedModule> simulatedModules(const std::vector<Module>& modules);

/// The modules of a backup with the records that simulated ones have now, where they are among these.
std::vector<Module> savedModules(std::vector<Module> modules,
                                 const std::vector<simulator::SimulatedModule>& simulated);

}  // namespace velk::cli
