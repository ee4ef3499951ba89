#pragma once

#include <winsock2.h>
// The socket header has to come first.
#include <windows.h>

#include <cstddef>

namespace velk::test {

/// While it lives, what a module calls by a name of a system library goes to a substitute.
class PatchedImport {
 public:
  PatchedImport(HMODULE module, const wchar_t* library, const char* name, const void* substitute)
      : original_(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name))) {
    auto* const base = reinterpret_cast<std::byte*>(module);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(
        base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IAT];
    auto* const slots = reinterpret_cast<const void**>(base + imports.VirtualAddress);
    for (std::size_t i = 0; i < imports.Size / sizeof(void*); ++i) {
      if (slots[i] == original_) slot_ = &slots[i];
    }
    if (slot_ != nullptr) set(substitute);
  }

  ~PatchedImport() {
    if (slot_ != nullptr) set(original_);
  }

  PatchedImport(const PatchedImport&) = delete;
  PatchedImport& operator=(const PatchedImport&) = delete;

  /// Whether the module calls the function at all.
  [[nodiscard]] bool isThere() const { return slot_ != nullptr; }

 private:
  void set(const void* target) {
    DWORD access = 0;
    VirtualProtect(slot_, sizeof *slot_, PAGE_READWRITE, &access);
    *slot_ = target;
    VirtualProtect(slot_, sizeof *slot_, access, &access);
  }

  const void* original_;
  const void** slot_ = nullptr;
};

/// The same for the program itself; the substitute has the type of the function.
#define VELK_PATCH(library, function, substitute)                                   \
  PatchedImport {                                                                   \
    GetModuleHandleW(nullptr), L##library, #function,                               \
        reinterpret_cast<const void*>(static_cast<decltype(&function)>(substitute)) \
  }

}  // namespace velk::test
