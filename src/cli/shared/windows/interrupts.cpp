#include <windows.h>

#include "cli/shared/system_interrupts.h"

namespace velk::cli::system {
namespace {

void (*noteInterrupt)(Interrupt) = nullptr;
const HANDLE arrival = CreateEventW(nullptr, TRUE, FALSE, nullptr);
bool isHandled = false;

/// Runs on a thread of its own. Windows ends the process when this returns from an event that closes the
/// console or ends the session, and a few seconds later in any case: it does not return before the program
/// has ended by itself.
BOOL WINAPI onEvent(DWORD event) {
  const bool breaks = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
  noteInterrupt(breaks ? Interrupt::breaks : Interrupt::end);
  SetEvent(arrival);
  if (!breaks) Sleep(INFINITE);
  return TRUE;
}

}  // namespace

/// The console ends its waits for a person at Ctrl-C by itself.
void handleInterrupts(void (*note)(Interrupt), Waits /*waits*/) {
  noteInterrupt = note;
  // Each call would add it once more, and one removal leave the others.
  if (!isHandled) isHandled = SetConsoleCtrlHandler(onEvent, TRUE) != 0;
}

void waitForInterrupt(std::chrono::milliseconds longest) {
  WaitForSingleObject(arrival, static_cast<DWORD>(longest.count()));
}

void forgetInterrupts() {
  ResetEvent(arrival);
}

void leaveInterrupts() {
  if (isHandled) isHandled = SetConsoleCtrlHandler(onEvent, FALSE) == 0;
}

}  // namespace velk::cli::system
