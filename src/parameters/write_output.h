#pragma once

#include "link/memory.h"
#include "parameters/ctl_param.h"

namespace velk::parameters {

/// `Ctl_Param` when it writes. Ends normally for result 0, throws `Stop` for any other.
void writeOutput(const link::Memory& memory, const OutputAccess& access);

}  // namespace velk::parameters
