#pragma once

#include <cstdio>
#include <cstdlib>

#include "support/input.h"

namespace velk::fuzz {

/// What a target does with one input: each target has its own.
void run(Input input);

/// Ends the run as a finding when something that must hold does not.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "broken: %s\n", what);
  std::abort();
}

}  // namespace velk::fuzz
