#pragma once

#include "link/memory.h"
#include "parameters/ctl_param.h"

namespace velk::parameters {

/// `Ctl_Param` when it reads. Ends normally for result 0, throws `Stop` for any other.
void readOutput(const link::Memory& memory, const OutputAccess& access);

}  // namespace velk::parameters
