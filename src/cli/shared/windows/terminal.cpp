#include "cli/shared/terminal.h"

#include <windows.h>

namespace velk::cli {
namespace {

/// A console that understands colours; it is told to.
bool isConsole(DWORD standardHandle) {
  HANDLE const handle = GetStdHandle(standardHandle);
  DWORD mode = 0;
  if (GetConsoleMode(handle, &mode) == 0) return false;
  return standardHandle == STD_INPUT_HANDLE ||
         SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

}  // namespace

bool outputIsTerminal() {
  return isConsole(STD_OUTPUT_HANDLE);
}

bool errorIsTerminal() {
  return isConsole(STD_ERROR_HANDLE);
}

bool inputIsTerminal() {
  return isConsole(STD_INPUT_HANDLE);
}

int terminalWidth() {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  const bool isKnown = GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info) != 0;
  return isKnown ? info.srWindow.Right - info.srWindow.Left + 1 : 0;
}

bool terminalHasColours() {
  return true;
}

bool terminalShowsUtf8() {
  return true;
}

}  // namespace velk::cli
