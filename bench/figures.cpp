#include "figures.h"

#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>

namespace velk::bench {

double percentile(Samples& samples, double part) {
  if (samples.empty()) return 0;
  const auto position = static_cast<std::size_t>(part * static_cast<double>(samples.size() - 1));
  const auto found = samples.begin() + static_cast<std::ptrdiff_t>(position);
  std::nth_element(samples.begin(), found, samples.end());
  return *found;
}

void print(const Figures& figures) {
  std::cout << nlohmann::json(figures).dump(1) << '\n';
}

}  // namespace velk::bench
