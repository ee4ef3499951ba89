#include "cli/path/windows/registry_path.h"

#include <windows.h>

#include <optional>

#include "cli/path/search_path.h"

namespace velk::cli {
namespace {

constexpr const wchar_t* valueName = L"Path";

struct Place {
  HKEY root;
  const wchar_t* key;
};

Place placeOf(PathOwner owner) {
  if (owner == PathOwner::user) return {HKEY_CURRENT_USER, L"Environment"};
  return {HKEY_LOCAL_MACHINE, LR"(SYSTEM\CurrentControlSet\Control\Session Manager\Environment)"};
}

/// The key with the variables of a user or of everybody.
class Variables {
 public:
  explicit Variables(PathOwner owner) {
    const Place place = placeOf(owner);
    constexpr REGSAM access = KEY_QUERY_VALUE | KEY_SET_VALUE;
    if (RegOpenKeyExW(place.root, place.key, 0, access, &key_) != ERROR_SUCCESS) key_ = nullptr;
  }
  Variables(const Variables&) = delete;
  Variables& operator=(const Variables&) = delete;
  ~Variables() {
    if (key_ != nullptr) RegCloseKey(key_);
  }

  /// Reads the path. False when it cannot be read or is no text, so that nothing may be written in its place.
  bool read() {
    if (key_ == nullptr) return false;
    DWORD bytes = 0;
    LSTATUS result = RegQueryValueExW(key_, valueName, nullptr, &type_, nullptr, &bytes);
    if (result == ERROR_FILE_NOT_FOUND) {
      type_ = REG_EXPAND_SZ;
      return true;
    }
    if (result != ERROR_SUCCESS || (type_ != REG_SZ && type_ != REG_EXPAND_SZ)) return false;
    std::wstring text(bytes / sizeof(wchar_t), L'\0');
    bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    result = RegQueryValueExW(key_, valueName, nullptr, &type_, reinterpret_cast<BYTE*>(text.data()), &bytes);
    if (result != ERROR_SUCCESS) return false;  // it has grown meanwhile, at worst
    text.resize(bytes / sizeof(wchar_t));
    if (!text.empty() && text.back() == L'\0') text.pop_back();
    text_ = text;
    return text.find(L'\0') == std::wstring::npos;
  }

  [[nodiscard]] const std::optional<std::wstring>& text() const { return text_; }

  /// Writes the path with the type that it had, or removes it.
  PathChange write(const std::optional<std::wstring>& text) {
    if (!text) return changed(RegDeleteValueW(key_, valueName));
    if (text->size() > longestPath) return PathChange::failed;
    return changed(RegSetValueExW(key_, valueName, 0, type_, reinterpret_cast<const BYTE*>(text->c_str()),
                                  static_cast<DWORD>((text->size() + 1) * sizeof(wchar_t))));
  }

 private:
  /// Programs that start others, the desktop above all, take their variables anew when they hear of it.
  static PathChange changed(LSTATUS result) {
    if (result != ERROR_SUCCESS) return PathChange::failed;
    constexpr UINT patience = 2000;  // milliseconds, for each window that does not answer
    SendMessageTimeoutW(HWND_BROADCAST, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"Environment"),
                        SMTO_ABORTIFHUNG, patience, nullptr);
    return PathChange::done;
  }

  HKEY key_ = nullptr;
  DWORD type_ = REG_NONE;
  std::optional<std::wstring> text_;
};

}  // namespace

PathChange addToPath(PathOwner owner, const std::wstring& folder) {
  Variables variables(owner);
  if (!variables.read()) return PathChange::failed;
  const auto path = pathWith(variables.text(), folder);
  return path ? variables.write(path) : PathChange::asItWas;
}

PathChange removeFromPath(PathOwner owner, const std::wstring& folder) {
  Variables variables(owner);
  if (!variables.read()) return PathChange::failed;
  if (!variables.text()) return PathChange::asItWas;
  const auto path = pathWithout(*variables.text(), folder);
  return path == variables.text() ? PathChange::asItWas : variables.write(path);
}

}  // namespace velk::cli
