#include "com/registration.h"

#include <array>
#include <string>
#include <vector>

#include "com/server.h"
#include "component/identity.h"

namespace velk::com {
namespace {

constexpr bool is64Bit = sizeof(void*) == 8;

/// Marshals dispatch interfaces between apartments.
constexpr const wchar_t* dispatchProxy = L"{00020420-0000-0000-C000-000000000046}";

std::wstring wide(std::string_view ascii) {
  return {ascii.begin(), ascii.end()};
}

std::wstring braced(std::string_view id) {
  return L"{" + wide(id) + L"}";
}

/// The keys, below the root of all classes.
const std::wstring classKey = L"CLSID\\" + braced(identity::classId);
const std::wstring interfaceKey = L"Interface\\" + braced(identity::interfaceId);
const std::wstring libraryKey = L"TypeLib\\" + braced(identity::libraryId);
const std::wstring versionKey = libraryKey + L"\\" + wide(identity::libraryVersion);
const std::wstring platformKey = versionKey + (is64Bit ? L"\\0\\win64" : L"\\0\\win32");
const std::wstring otherPlatformKey = versionKey + (is64Bit ? L"\\0\\win32" : L"\\0\\win64");
const std::wstring progIdKey = wide(identity::progId);
const std::wstring versionedProgIdKey = wide(identity::versionedProgId);

struct Entry {
  std::wstring key;
  const wchar_t* name;  ///< null: the key's default value
  std::wstring value;
};

std::vector<Entry> entries(const std::wstring& path) {
  const std::wstring description = wide(identity::classHelp);
  const std::wstring version = wide(identity::libraryVersion);
  return {
      {classKey, nullptr, description},
      {classKey + L"\\InprocServer32", nullptr, path},
      {classKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
      {classKey + L"\\ProgID", nullptr, versionedProgIdKey},
      {classKey + L"\\VersionIndependentProgID", nullptr, progIdKey},
      {classKey + L"\\TypeLib", nullptr, braced(identity::libraryId)},
      {classKey + L"\\Version", nullptr, version},
      {progIdKey, nullptr, description},
      {progIdKey + L"\\CLSID", nullptr, braced(identity::classId)},
      {progIdKey + L"\\CurVer", nullptr, versionedProgIdKey},
      {versionedProgIdKey, nullptr, description},
      {versionedProgIdKey + L"\\CLSID", nullptr, braced(identity::classId)},
      {interfaceKey, nullptr, wide(identity::interfaceName)},
      {interfaceKey + L"\\ProxyStubClsid32", nullptr, dispatchProxy},
      {interfaceKey + L"\\TypeLib", nullptr, braced(identity::libraryId)},
      {interfaceKey + L"\\TypeLib", L"Version", version},
      {versionKey, nullptr, wide(identity::libraryHelp)},
      {versionKey + L"\\FLAGS", nullptr, L"0"},
      {versionKey + L"\\HELPDIR", nullptr, path.substr(0, path.find_last_of(L'\\'))},
      {platformKey, nullptr, path},
  };
}

/// A key that goes when the component is unregistered, unless another version has taken it over.
struct Removal {
  std::wstring key;
  std::wstring witness;    ///< the key whose value tells that; empty: the key bears this version's number
  const wchar_t* name;     ///< of the value; null: the default value
  std::wstring thisValue;  ///< what stands there while the key is this version's
};

/// Keys of this component alone: the system shows a 32-bit program other ones than a 64-bit program.
const std::array ownKeys{
    Removal{classKey, classKey + L"\\ProgID", nullptr, versionedProgIdKey},
    Removal{interfaceKey, interfaceKey + L"\\TypeLib", L"Version", wide(identity::libraryVersion)},
    Removal{platformKey, L"", nullptr, L""},
};

/// Keys in common with the component of the other kind.
const std::array sharedKeys{
    Removal{progIdKey, progIdKey + L"\\CurVer", nullptr, versionedProgIdKey},
    Removal{versionedProgIdKey, L"", nullptr, L""},
    Removal{versionKey, L"", nullptr, L""},
};

/// The root of all classes, for everybody or for the current user.
class Classes {
 public:
  explicit Classes(InstallScope scope)
      : hive_(scope == InstallScope::everybody ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER) {}

  [[nodiscard]] LSTATUS write(const Entry& entry) const {
    const auto size = static_cast<DWORD>((entry.value.size() + 1) * sizeof(wchar_t));
    HKEY key = nullptr;
    LSTATUS status =
        RegCreateKeyExW(hive_, full(entry.key).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr);
    if (status != ERROR_SUCCESS) return status;
    status =
        RegSetValueExW(key, entry.name, 0, REG_SZ, reinterpret_cast<const BYTE*>(entry.value.c_str()), size);
    RegCloseKey(key);
    return status;
  }

  [[nodiscard]] LSTATUS remove(const Removal& removal) const {
    if (!isOfThisVersion(removal)) return ERROR_SUCCESS;
    const LSTATUS status = RegDeleteTreeW(hive_, full(removal.key).c_str());
    return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
  }

  /// Removes a key that holds nothing any more.
  void removeEmpty(const std::wstring& name) const {
    HKEY key = nullptr;
    if (RegOpenKeyExW(hive_, full(name).c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    DWORD keys = 0;
    DWORD values = 0;
    const LSTATUS status = RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values,
                                            nullptr, nullptr, nullptr, nullptr);
    RegCloseKey(key);
    if (status == ERROR_SUCCESS && keys + values == 0) RegDeleteKeyW(hive_, full(name).c_str());
  }

  [[nodiscard]] bool has(const std::wstring& name) const {
    HKEY key = nullptr;
    if (RegOpenKeyExW(hive_, full(name).c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
  }

 private:
  /// A key without its witness is what an installation left that broke off.
  [[nodiscard]] bool isOfThisVersion(const Removal& removal) const {
    if (removal.witness.empty()) return true;
    std::array<wchar_t, 64> value{};
    DWORD size = sizeof value;
    const LSTATUS status = RegGetValueW(hive_, full(removal.witness).c_str(), removal.name, RRF_RT_REG_SZ,
                                        nullptr, value.data(), &size);
    return status == ERROR_FILE_NOT_FOUND || (status == ERROR_SUCCESS && removal.thisValue == value.data());
  }

  static std::wstring full(const std::wstring& key) { return L"Software\\Classes\\" + key; }

  HKEY hive_;
};

template <class Keys>
LSTATUS removeAll(const Classes& classes, const Keys& keys) {
  LSTATUS first = ERROR_SUCCESS;
  for (const Removal& key : keys) {
    const LSTATUS status = classes.remove(key);
    if (first == ERROR_SUCCESS) first = status;
  }
  return first;
}

}  // namespace

HRESULT registerServer(InstallScope scope) {
  const Classes classes(scope);
  for (const Entry& entry : entries(modulePath())) {
    if (const LSTATUS status = classes.write(entry); status != ERROR_SUCCESS) {
      unregisterServer(scope);
      return HRESULT_FROM_WIN32(static_cast<unsigned long>(status));
    }
  }
  return S_OK;
}

HRESULT unregisterServer(InstallScope scope) {
  const Classes classes(scope);
  LSTATUS status = removeAll(classes, ownKeys);
  if (status == ERROR_SUCCESS && !classes.has(otherPlatformKey)) status = removeAll(classes, sharedKeys);
  classes.removeEmpty(libraryKey);
  return HRESULT_FROM_WIN32(static_cast<unsigned long>(status));
}

}  // namespace velk::com
