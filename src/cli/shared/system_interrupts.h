#pragma once

#include <chrono>
#include <cstdint>

/// What interrupts.h asks of the operating system.
namespace velk::cli {

enum class Interrupt : std::uint8_t {
  none,
  breaks,  ///< Ctrl-C
  end,     ///< anything else that asks the program to end
};

namespace system {

/// What becomes of a wait for a person, or for standard input.
enum class Waits : std::uint8_t { goOn, end };

/// Has `note` called, at any time or on any thread, for each request.
void handleInterrupts(void (*note)(Interrupt), Waits waits);

/// Waits for one, at the longest so long, if `handleInterrupts` has been called. May return early, and does
/// once one has come.
void waitForInterrupt(std::chrono::milliseconds longest);

/// What has come no longer ends a wait.
void forgetInterrupts();

/// Lets them end the program.
void leaveInterrupts();

}  // namespace system
}  // namespace velk::cli
