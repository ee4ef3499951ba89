#pragma once

#include <chrono>
#include <functional>
#include <utility>

#include "cli/shared/interrupts.h"
#include "cli/velk/connection/expect_done.h"
#include "platform/host.h"

namespace velk::cli {

/// Whether a result says that a request or its reply was lost on the way (see `Result`), so that to ask again
/// may help: nobody has refused anything.
bool isLost(Byte result);

/// Asks again for what a link has lost: up to three times, with a pause in front of each. The pause is
/// measured on the steady clock. A reply that was only late comes meanwhile, and the next request drops it,
/// so that it is not taken for the answer to that one, which looks the same on some links; for the same
/// reason a pause stands behind a request that was repeated. Around midnight, when every wait ends early for
/// a second, it is the pause that lets this second pass.
///
/// Only for what may be done twice: never for the trigger of a module, nor for the clock.
class Retry {
 public:
  static constexpr int times = 3;
  static constexpr std::chrono::milliseconds pauseTime{1000};

  explicit Retry(platform::Host& host) : host_(host) {}

  /// Carries out a read until its outcome is not lost; returns the last one. A Ctrl-C that came before breaks
  /// it off: see `checkBreak`.
  template <class Read, class Lost>
  auto read(Read read, Lost lost) {
    checkBreak();
    return repeat(read, read, lost);
  }

  /// The same for reads that end with a result byte.
  template <class Read>
  Byte read(Read read) {
    return this->read(read, isLost);
  }

  /// Carries out a write, which ends with a result byte. When that is lost, looks what stands in the
  /// controller before it writes again. `stands` reads back whether all is there.
  template <class Write, class Stands>
  Byte write(Write write, Stands stands) {
    return repeat(
        write, [&] { return stands() ? Byte{0} : write(); }, isLost);
  }

  /// What to do when the very first request is lost, before it is repeated; may throw `Failure` with a reason
  /// why none will ever come back.
  void whenFirstIsLost(std::function<void()> look) { look_ = std::move(look); }

  /// Waits for what may be on its way still, behind a request that is not repeated. Ends early, with
  /// `Failure`, on Ctrl-C.
  void pause();

  /// How many requests were repeated so far.
  [[nodiscard]] int repeated() const { return repeated_; }
  int takeRepeated() { return std::exchange(repeated_, 0); }

 private:
  template <class First, class Next, class Lost>
  auto repeat(First first, Next next, Lost lost) {
    auto outcome = first();
    if (const auto look = std::exchange(look_, {}); look && lost(outcome)) look();
    int tries = 0;
    for (; lost(outcome) && tries < times; ++tries) {
      again();
      outcome = next();
    }
    if (tries != 0) pause();
    return outcome;
  }
  void again();

  platform::Host& host_;
  int repeated_ = 0;
  std::function<void()> look_;
};

/// That of the program's own link.
Retry& retry();

/// Says at the end of a command how many requests were lost on the way and repeated since it was last called.
void tellRepeats();

/// Carries out a read as `Retry` does. Throws `Failure` that names what was tried, unless its result is 0.
template <class Read>
void expectRead(Read read, const std::string& what) {
  expectDone(retry().read(read), what);
}

}  // namespace velk::cli
