#pragma once

#include <chrono>
#include <cstdint>

#include "platform/host.h"

namespace velk::link {

using Seconds = std::chrono::duration<double>;

/// The clocks that end a wait, each when the delay has passed on it.
enum class Clocks : std::uint8_t {
  both,    ///< the first of the two
  steady,  ///< for a delay that has to last its time, as a line break does
};

/// The end of a wait. It is over when its delay has passed, on the steady clock or on that of seconds since
/// midnight, and also when the latter reads 1.0 or less: the guard against the wrap at midnight, which ends
/// every wait that meets it early.
///
/// The rest is measured on the steady clock, because seconds since midnight in single precision move in steps
/// of 7.8 ms late in the day, and because a clock that is set back must not prolong a wait.
class Deadline {
 public:
  Deadline(platform::Host& host, Seconds delay, Clocks clocks = Clocks::both);

  /// What `remaining` was at the start: clocks are read once less.
  [[nodiscard]] std::chrono::nanoseconds whole() const { return whole_; }

  /// The time until the wait is over; 0 when it is.
  [[nodiscard]] std::chrono::nanoseconds remaining() const;

  [[nodiscard]] bool passed() const { return remaining() == std::chrono::nanoseconds::zero(); }

 private:
  [[nodiscard]] std::chrono::nanoseconds restAt(float clock, std::chrono::nanoseconds steady) const;

  platform::Host& host_;
  float end_;
  std::chrono::nanoseconds steadyEnd_;
  std::chrono::nanoseconds whole_;
};

/// Waits until done() holds. It is asked each time the source may have news, and once more when the deadline
/// has passed. `rest` is what remains of the deadline.
template <class Done>
void await(platform::Host& host, const Deadline& deadline, std::chrono::nanoseconds rest,
           platform::Source source, platform::Messages messages, Done done) {
  for (;; rest = deadline.remaining()) {
    host.block(source, rest, messages);
    if (done() || rest.count() == 0) return;
  }
}

/// The same for a delay that starts now.
template <class Done>
void await(platform::Host& host, Seconds delay, platform::Source source, platform::Messages messages,
           Done done) {
  const Deadline deadline(host, delay);
  await(host, deadline, deadline.whole(), source, messages, done);
}

/// Waits out a delay, which ends early at midnight alone: nothing could answer it, so the steps of the clock
/// of seconds since midnight have no say.
void pause(platform::Host& host, Seconds delay, platform::Messages messages);

}  // namespace velk::link
