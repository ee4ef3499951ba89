#include <windows.h>
// after windows.h
#include <shellapi.h>

#include <string_view>

#include "cli/path/windows/registry_path.h"

/// What the setup program uses to put the tools on the search path, since its own texts end after 1023
/// characters and would cut a longer path.
///
///     setup-path add|remove user|everybody FOLDER
///
/// Exit status: 0 changed, 1 nothing to change, 2 failed or called in another way.
int main() {
  using velk::cli::PathChange;
  using velk::cli::PathOwner;
  int count = 0;
  LPWSTR* const words = CommandLineToArgvW(GetCommandLineW(), &count);
  if (words == nullptr || count != 4) return static_cast<int>(PathChange::failed);
  const std::wstring_view action = words[1];
  const std::wstring_view owner = words[2];
  if ((action != L"add" && action != L"remove") || (owner != L"user" && owner != L"everybody")) {
    return static_cast<int>(PathChange::failed);
  }
  const auto change = action == L"add" ? velk::cli::addToPath : velk::cli::removeFromPath;
  return static_cast<int>(change(owner == L"user" ? PathOwner::user : PathOwner::everybody, words[3]));
}
