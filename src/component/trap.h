#pragma once

#include "link/memory.h"
#include "values/bytes.h"
#include "values/result.h"
#include "values/runtime_error.h"

namespace velk {

/// Runs the body of a method that traps: its result byte, 0 when it has none, what a `Stop` carries, or the
/// byte for a run-time error.
template <class Body>
Byte trapped(Body body) {
  try {
    if constexpr (std::is_void_v<decltype(body())>) {
      body();
      return 0;
    } else {
      return body();
    }
  } catch (const link::Stop& stop) {
    return stop.result;
  } catch (const RuntimeError& error) {
    return resultOfError(error.number());
  }
}

}  // namespace velk
