#include "cli/shared/windows/wide.h"

#include <windows.h>

namespace velk::cli {

std::wstring wideOf(std::string_view text) {
  const auto length = static_cast<int>(text.size());
  for (const UINT page : {UINT{CP_UTF8}, UINT{CP_ACP}}) {
    const DWORD strict = page == CP_UTF8 ? MB_ERR_INVALID_CHARS : 0;
    const int size = MultiByteToWideChar(page, strict, text.data(), length, nullptr, 0);
    if (size == 0) continue;
    std::wstring result(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(page, strict, text.data(), length, result.data(), size);
    return result;
  }
  return {};
}

std::string utf8Of(std::wstring_view text) {
  const auto length = static_cast<int>(text.size());
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), size, nullptr, nullptr);
  return result;
}

}  // namespace velk::cli
