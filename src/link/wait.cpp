#include "link/wait.h"

#include <algorithm>
#include <limits>

namespace velk::link {
namespace {

constexpr float guard = 1.0F;  // seconds since midnight
constexpr double day = 86400;  // seconds

}  // namespace

Deadline::Deadline(platform::Host& host, Seconds delay, Clocks clocks) : host_(host) {
  const float clock = host.clock();
  const auto steady = host.steady();
  end_ = clocks == Clocks::steady ? std::numeric_limits<float>::infinity()
                                  : clock + static_cast<float>(delay.count());
  steadyEnd_ = steady + std::chrono::duration_cast<std::chrono::nanoseconds>(delay);
  whole_ = restAt(clock, steady);
}

std::chrono::nanoseconds Deadline::remaining() const {
  return restAt(host_.clock(), host_.steady());
}

std::chrono::nanoseconds Deadline::restAt(float clock, std::chrono::nanoseconds steady) const {
  if (clock <= guard || clock >= end_) return {};
  const auto rest = std::max(steadyEnd_ - steady, std::chrono::nanoseconds::zero());
  const Seconds untilMidnight(day - clock);
  if (rest < untilMidnight) return rest;
  // The wait has to wake at midnight to meet the guard.
  return std::chrono::ceil<std::chrono::milliseconds>(untilMidnight) + std::chrono::milliseconds(1);
}

void pause(platform::Host& host, Seconds delay, platform::Messages messages) {
  const Deadline deadline(host, delay, Clocks::steady);
  await(host, deadline, deadline.whole(), platform::Source::nothing, messages, [] { return false; });
}

}  // namespace velk::link
