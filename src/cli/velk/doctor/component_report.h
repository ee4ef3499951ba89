#pragma once

namespace velk::cli {

/// Prints how the component is registered, whether it can be created, and what to type to mend it; returns
/// the exit status.
int reportComponent(bool json);

}  // namespace velk::cli
