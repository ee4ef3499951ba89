#pragma once

#include <windows.h>

namespace velk::com {

/// For whom the component is registered.
enum class InstallScope : unsigned char { everybody, currentUser };

/// Writes the component's keys, with the path of this module. Returns S_OK or the system's error code, and
/// then leaves none behind.
HRESULT registerServer(InstallScope scope);

/// Removes them. Those that the 32-bit and the 64-bit component share stay while the other is registered, and
/// those that another version of the component has taken over stay as they are.
HRESULT unregisterServer(InstallScope scope);

}  // namespace velk::com
