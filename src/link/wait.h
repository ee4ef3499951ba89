#pragma once

#include <chrono>

#include "platform/host.h"

namespace velk::link {

using Seconds = std::chrono::duration<double>;

/// The end of a wait. It is over when its delay has passed, and also when the clock of seconds since midnight
/// is at or past its end or reads 1.0 or less: the guard against the wrap at midnight, which ends every wait
/// that meets it early.
///
/// The rest is measured on the steady clock, because seconds since midnight in single precision move in steps
/// of 7.8 ms late in the day, and because a clock that is set back must not prolong a wait.
class Deadline {
 public:
  Deadline(platform::Host& host, Seconds delay);

  /// The time until the wait is over; 0 when it is.
  [[nodiscard]] std::chrono::nanoseconds remaining() const;

  [[nodiscard]] bool passed() const { return remaining() == std::chrono::nanoseconds::zero(); }

 private:
  platform::Host& host_;
  float end_;
  std::chrono::nanoseconds steadyEnd_;
};

/// Waits until done() holds. It is asked each time the source may have news, and once more when the deadline
/// has passed.
template <class Done>
void await(platform::Host& host, const Deadline& deadline, platform::Source source,
           platform::Messages messages, Done done) {
  std::chrono::nanoseconds rest{};
  do {
    rest = deadline.remaining();
    host.block(source, rest, messages);
  } while (!done() && rest.count() > 0);
}

/// Waits out a delay.
void pause(platform::Host& host, Seconds delay, platform::Messages messages);

}  // namespace velk::link
