#include "cli/velk/doctor/component_state.h"

#include <objbase.h>
#include <oleauto.h>
#include <windows.h>

#include <array>

#include "cli/shared/windows/wide.h"
#include "component/identity.h"

namespace velk::cli {
namespace {

/// The registry as programs of one bitness see it, for everybody or for this user.
struct Place {
  int bits;
  REGSAM view;
  Scope scope;
  HKEY hive;
};

const std::array places{
    Place{wide, KEY_WOW64_64KEY, Scope::everybody, HKEY_LOCAL_MACHINE},
    Place{wide, KEY_WOW64_64KEY, Scope::user, HKEY_CURRENT_USER},
    Place{narrow, KEY_WOW64_32KEY, Scope::everybody, HKEY_LOCAL_MACHINE},
    Place{narrow, KEY_WOW64_32KEY, Scope::user, HKEY_CURRENT_USER},
};

std::filesystem::path libraryAt(const Place& place) {
  const std::wstring name = L"Software\\Classes\\CLSID\\{" + wideOf(identity::classId) + L"}\\InprocServer32";
  HKEY key = nullptr;
  if (RegOpenKeyExW(place.hive, name.c_str(), 0, KEY_READ | place.view, &key) != ERROR_SUCCESS) return {};
  std::array<wchar_t, 1024> text{};
  DWORD size = sizeof text;
  const LSTATUS status = RegGetValueW(key, nullptr, nullptr, RRF_RT_REG_SZ, nullptr, text.data(), &size);
  RegCloseKey(key);
  return status == ERROR_SUCCESS ? std::filesystem::path(text.data()) : std::filesystem::path();
}

/// Empty on 32-bit systems, which have no such folder.
std::filesystem::path narrowFolder() {
  std::array<wchar_t, MAX_PATH> text{};
  GetSystemWow64DirectoryW(text.data(), static_cast<UINT>(text.size()));
  return text.data();
}

std::filesystem::path thisProgram() {
  std::array<wchar_t, 1024> text{};
  GetModuleFileNameW(nullptr, text.data(), static_cast<DWORD>(text.size()));
  return text.data();
}

/// Goes the way of a script host, up to a property.
HRESULT createAndRead() {
  constexpr std::array<wchar_t, 9> property{L"SoortETH"};
  CLSID id;
  HRESULT result = CLSIDFromProgID(wideOf(identity::progId).c_str(), &id);
  IDispatch* object = nullptr;
  if (SUCCEEDED(result)) {
    result =
        CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&object));
  }
  if (FAILED(result)) return result;
  DISPID member = 0;
  auto name = property;
  LPOLESTR names = name.data();
  result = object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_NEUTRAL, &member);
  if (SUCCEEDED(result)) {
    DISPPARAMS none{};
    VARIANT value;
    VariantInit(&value);
    result = object->Invoke(member, IID_NULL, LOCALE_NEUTRAL, DISPATCH_PROPERTYGET, &none, &value, nullptr,
                            nullptr);
    VariantClear(&value);
  }
  object->Release();
  return result;
}

}  // namespace

std::uint32_t tryToCreate() {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const HRESULT result = createAndRead();
  CoUninitialize();
  return SUCCEEDED(result) ? 0 : static_cast<std::uint32_t>(result);
}

std::vector<Registration> findRegistrations() {
  const bool hasOneView = narrowFolder().empty();  // a 32-bit system, which calls it by both names
  std::vector<Registration> found;
  for (const Place& place : places) {
    if (place.bits == wide && hasOneView) continue;
    found.push_back({.bits = place.bits, .scope = place.scope, .library = libraryAt(place)});
  }
  return found;
}

ComponentState inspectComponent() {
  return {.registrations = findRegistrations(),
          .program = thisProgram(),
          .narrowFolder = narrowFolder(),
          .result = tryToCreate()};
}

}  // namespace velk::cli
