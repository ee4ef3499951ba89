#pragma once

#include "figures.h"

namespace velk::bench {

/// What calls through the component's dispatch interface cost, in nanoseconds. For each value helper:
/// calls.HELPER.invoke through `Invoke` by id, and calls.HELPER.virtual through a C++ virtual call.
/// calls.name is the look-up of a method's name, the average over all names.
void measureCalls(Figures& figures);

}  // namespace velk::bench
