#include "cli/shared/interrupts.h"

#include <windows.h>

#include <atomic>

namespace velk::cli {
namespace {

std::atomic<bool> came{false};

/// Runs on a thread of its own. Windows ends the process when this returns from an event that closes the
/// console or ends the session, and a few seconds later in any case: it does not return before the program
/// has ended by itself.
BOOL WINAPI onEvent(DWORD event) {
  came = true;
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(INFINITE);
  return TRUE;
}

}  // namespace

void watchInterrupts() {
  // Each call would add it once more, and one removal leave the others.
  SetConsoleCtrlHandler(onEvent, FALSE);
  SetConsoleCtrlHandler(onEvent, TRUE);
}

void unwatchInterrupts() {
  SetConsoleCtrlHandler(onEvent, FALSE);
}

bool isInterrupted() {
  return came;
}

}  // namespace velk::cli
