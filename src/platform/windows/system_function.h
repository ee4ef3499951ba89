#pragma once

#include <windows.h>

namespace velk::platform {

/// A function of a system library that is always loaded, looked up while the program runs because not every
/// Windows has it; null where there is none.
template <class Function>
Function systemFunction(const wchar_t* library, const char* name) {
  // The detour keeps the compiler from doubting a cast between functions that it knows to differ.
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name)));
}

}  // namespace velk::platform
