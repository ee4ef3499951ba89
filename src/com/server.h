#pragma once

#include <windows.h>

#include <string>

namespace velk::com {

/// Something that keeps the component loaded: an object, a reference to the class factory, a lock.
void addServerReference();
void releaseServerReference();

/// Whether nothing keeps the component loaded; an open port or socket does, too.
bool mayUnload();

/// The path of the file that this code was loaded from. Throws when the system does not tell.
std::wstring modulePath();

}  // namespace velk::com
