#pragma once

#include "link/memory.h"
#include "parameters/ctl_param.h"

/// The two directions of `Ctl_Param`; both end normally for result 0 and throw `Stop` for any other.
namespace velk::parameters {

void readOutput(const link::Memory& memory, const OutputAccess& access);
void writeOutput(const link::Memory& memory, const OutputAccess& access);

}  // namespace velk::parameters
