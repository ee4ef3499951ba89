#pragma once

namespace velk::cli {

/// Whether this system has the component.
bool componentIsHere();

/// Prints how the component is registered, whether it can be created, and what to type to mend it; returns
/// the exit status.
int reportComponent(bool json);

}  // namespace velk::cli
