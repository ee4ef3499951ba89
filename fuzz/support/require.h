#pragma once

#include <cstdio>
#include <cstdlib>

namespace velk::fuzz {

/// Ends the run as a finding when something that must hold does not.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "broken: %s\n", what);
  std::abort();
}

}  // namespace velk::fuzz
