#include "cli/shared/ask_password.h"

#include <windows.h>

#include <array>
#include <iostream>

#include "cli/shared/failure.h"
#include "cli/shared/windows/wide.h"

namespace velk::cli {

std::string askPassword(const std::string& question) {
  std::cerr << question << std::flush;
  HANDLE const input = GetStdHandle(STD_INPUT_HANDLE);
  DWORD mode = 0;
  GetConsoleMode(input, &mode);
  SetConsoleMode(input, (mode | ENABLE_LINE_INPUT) & ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
  std::array<wchar_t, 256> text{};
  DWORD length = 0;
  const BOOL read = ReadConsoleW(input, text.data(), static_cast<DWORD>(text.size()), &length, nullptr);
  SetConsoleMode(input, mode);
  std::cerr << '\n';
  if (read == 0 || length == 0) throw Failure(interrupted, "interrupted");
  const std::wstring_view line(text.data(), length);
  return utf8Of(line.substr(0, line.find_first_of(L"\r\n")));
}

}  // namespace velk::cli
