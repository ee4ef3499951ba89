#pragma once

#include <windows.h>
// The automation types need the base types first.
#include <oaidl.h>

namespace velk::com {

/// A type's description from the type library in this module. Returns S_OK or the system's error code.
HRESULT typeInfo(REFGUID id, ITypeInfo** info);

}  // namespace velk::com
