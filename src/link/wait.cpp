#include "link/wait.h"

#include <algorithm>

namespace velk::link {
namespace {

constexpr float guard = 1.0F;
constexpr double day = 86400;

}  // namespace

Deadline::Deadline(platform::Host& host, Seconds delay)
    : host_(host),
      end_(host.clock() + static_cast<float>(delay.count())),
      steadyEnd_(host.steady() + std::chrono::round<std::chrono::nanoseconds>(delay)) {}

std::chrono::nanoseconds Deadline::remaining() const {
  const float clock = host_.clock();
  if (clock <= guard || clock >= end_) return {};
  // A wait that spans midnight has to wake there to meet the guard.
  const auto untilMidnight =
      std::chrono::ceil<std::chrono::milliseconds>(Seconds(day - clock)) + std::chrono::milliseconds(1);
  return std::clamp<std::chrono::nanoseconds>(steadyEnd_ - host_.steady(), {}, untilMidnight);
}

void pause(platform::Host& host, Seconds delay, platform::Messages messages) {
  await(host, Deadline(host, delay), platform::Source::nothing, messages, [] { return false; });
}

}  // namespace velk::link
