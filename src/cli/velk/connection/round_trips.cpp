#include "cli/velk/connection/round_trips.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

namespace velk::cli {

RoundTrips measureRoundTrips(const std::function<void()>& read) {
  using std::chrono::steady_clock;
  constexpr std::size_t reads = 21;
  std::array<double, reads> times{};
  for (double& time : times) {
    const auto start = steady_clock::now();
    read();
    time = std::chrono::duration<double, std::milli>(steady_clock::now() - start).count();
  }
  std::sort(times.begin(), times.end());
  return {.least = times.front(), .median = times[reads / 2], .p95 = times[reads * 95 / 100]};
}

std::string milliseconds(double time) {
  std::array<char, 32> text{};
  const int length = std::snprintf(text.data(), text.size(), "%.3f ms", time);
  return {text.data(), static_cast<std::size_t>(length)};
}

std::string textOf(const RoundTrips& times) {
  return "min " + milliseconds(times.least) + ", median " + milliseconds(times.median) + ", p95 " +
         milliseconds(times.p95);
}

Json jsonOf(const RoundTrips& times) {
  return {{"min", times.least}, {"median", times.median}, {"p95", times.p95}};
}

}  // namespace velk::cli
