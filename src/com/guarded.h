#pragma once

#include <windows.h>

#include <new>

namespace velk::com {

/// Runs a step of a function that the system or a host calls: what it returns, or the system's code for what
/// it throws. No exception gets past it.
template <class Step>
HRESULT guarded(Step step) noexcept {
  try {
    return step();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

}  // namespace velk::com
