#pragma once

#include <functional>
#include <string>

#include "cli/shared/json.h"

namespace velk::cli {

/// How long short reads take, in milliseconds.
struct RoundTrips {
  double least;
  double median;
  double p95;
};

/// Measures a read 21 times.
RoundTrips measureRoundTrips(const std::function<void()>& read);

/// "min 0.031 ms, median 0.035 ms, p95 0.050 ms".
std::string textOf(const RoundTrips& times);

Json jsonOf(const RoundTrips& times);

/// "0.035 ms".
std::string milliseconds(double time);

}  // namespace velk::cli
