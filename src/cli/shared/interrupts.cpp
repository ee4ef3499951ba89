#include "cli/shared/interrupts.h"

#include <atomic>

#include "cli/shared/failure.h"
#include "cli/shared/system_interrupts.h"

namespace velk::cli {
namespace {

std::atomic<Interrupt> came{Interrupt::none};
static_assert(std::atomic<Interrupt>::is_always_lock_free);

bool survives = false;
bool isWatched = false;

void note(Interrupt interrupt) {
  if (came != Interrupt::end) came = interrupt;
}

}  // namespace

void watchInterrupts() {
  isWatched = true;
  system::handleInterrupts(note, system::Waits::goOn);
}

void unwatchInterrupts() {
  isWatched = false;
  if (survives) {
    system::handleInterrupts(note, system::Waits::end);
  } else {
    system::leaveInterrupts();
  }
}

void surviveInterrupts() {
  survives = true;
  isWatched = false;
  system::handleInterrupts(note, system::Waits::goOn);
}

bool isInterrupted() {
  return came != Interrupt::none;
}

void waitForInterrupt(std::chrono::milliseconds longest) {
  if (!isInterrupted()) system::waitForInterrupt(longest);
}

void checkInterrupt() {
  if (isInterrupted()) throw Failure(interrupted, "interrupted");
}

void checkBreak() {
  if (!isWatched) checkInterrupt();
}

bool forgetInterrupt() {
  if (came == Interrupt::end) return false;
  system::forgetInterrupts();
  came = Interrupt::none;
  return true;
}

}  // namespace velk::cli
