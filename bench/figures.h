#pragma once

#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace velk::bench {

/// What one start of a program has measured, by name.
using Figures = std::map<std::string, double>;

/// Latencies in microseconds.
using Samples = std::vector<double>;

using Clock = std::chrono::steady_clock;

inline double microsecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

/// The sample below which `part` (0 to 1) of all samples lie; sorts them partly.
double percentile(Samples& samples, double part);

/// Writes the figures as one JSON object on standard output.
void print(const Figures& figures);

}  // namespace velk::bench
