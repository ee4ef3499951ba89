#pragma once

namespace velk::bench {

/// The CPU time that the calling thread has used, in microseconds.
double cpuTime();

}  // namespace velk::bench
