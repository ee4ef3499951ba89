#include "cli/shared/native_text.h"

#include <windows.h>
// after windows.h
#include <shellapi.h>

#include "cli/shared/terminal.h"
#include "cli/shared/windows/wide.h"

namespace velk::cli {

/// The words of `main` are in the system's code page, which has not every character.
std::vector<std::string> commandLine(int argc, char** argv) {
  int count = 0;
  LPWSTR* const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (wide == nullptr) return {argv, argv + argc};
  std::vector<std::string> words;
  for (int i = 0; i < count; ++i) words.push_back(utf8Of(wide[i]));
  LocalFree(wide);
  return words;
}

std::optional<std::string> environment(const char* name) {
  const std::wstring wideName(name, name + std::char_traits<char>::length(name));
  // The length with the terminator of a value; 0 for a variable that is not set.
  const DWORD size = GetEnvironmentVariableW(wideName.c_str(), nullptr, 0);
  if (size == 0) return std::nullopt;
  std::wstring value(size, L'\0');
  value.resize(GetEnvironmentVariableW(wideName.c_str(), value.data(), size));
  return utf8Of(value);
}

unsigned setUtf8Console() {
  if (!outputIsTerminal() && !errorIsTerminal()) return 0;
  const UINT before = GetConsoleOutputCP();
  SetConsoleOutputCP(CP_UTF8);
  return before;
}

void resetConsole(unsigned before) {
  if (before != 0) SetConsoleOutputCP(before);
}

}  // namespace velk::cli
