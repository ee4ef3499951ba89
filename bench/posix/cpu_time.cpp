#include "cpu_time.h"

#include <ctime>

namespace velk::bench {

double cpuTime() {
  timespec used{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
  return static_cast<double>(used.tv_sec) * 1e6 + static_cast<double>(used.tv_nsec) * 1e-3;
}

}  // namespace velk::bench
