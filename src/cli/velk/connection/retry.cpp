#include "cli/velk/connection/retry.h"

#include <algorithm>
#include <iostream>

#include "cli/shared/interrupts.h"
#include "link/link.h"
#include "values/result.h"

namespace velk::cli {

bool isLost(Byte result) {
  return result >= noMatchingReply && result <= echoFault;
}

void Retry::pause() {
  constexpr std::chrono::nanoseconds slice = std::chrono::milliseconds(100);
  const auto end = host_.steady() + pauseTime;
  for (auto rest = end - host_.steady(); rest > std::chrono::nanoseconds::zero();
       rest = end - host_.steady()) {
    checkInterrupt();
    host_.block(platform::Source::nothing, std::min(rest, slice), platform::Messages::held);
  }
}

void Retry::again() {
  pause();
  ++repeated_;
}

Retry& retry() {
  static Retry ofTheProgram(platform::threadHost());
  return ofTheProgram;
}

void tellRepeats() {
  if (const int count = retry().takeRepeated(); count != 0) {
    std::cerr << "velk: " << count << (count == 1 ? " request was" : " requests were")
              << " lost on the way and repeated\n";
  }
}

}  // namespace velk::cli
