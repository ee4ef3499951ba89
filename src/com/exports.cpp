// What the system calls by name in the component's file.

#include <windows.h>
// The interfaces need the base types first.
#include <olectl.h>

#include <string_view>

#include "com/class_factory.h"
#include "com/guarded.h"
#include "com/identifiers.h"
#include "com/registration.h"
#include "com/server.h"

using velk::com::guarded;
using velk::com::InstallScope;

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (id != velk::com::classId) return CLASS_E_CLASSNOTAVAILABLE;
  return velk::com::classFactory().QueryInterface(iid, object);
}

STDAPI DllCanUnloadNow() {
  return velk::com::mayUnload() ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
  return guarded([] { return velk::com::registerServer(InstallScope::everybody); });
}

STDAPI DllUnregisterServer() {
  return guarded([] { return velk::com::unregisterServer(InstallScope::everybody); });
}

/// The command line "user", in any case, installs for the current user, an empty one for everybody.
STDAPI DllInstall(BOOL install, LPCWSTR commandLine) {
  const std::wstring_view command = commandLine == nullptr ? L"" : commandLine;
  if (!command.empty() && CompareStringOrdinal(commandLine, -1, L"user", -1, TRUE) != CSTR_EQUAL) {
    return E_INVALIDARG;
  }
  const InstallScope scope = command.empty() ? InstallScope::everybody : InstallScope::currentUser;
  return guarded([=] {
    return install != FALSE ? velk::com::registerServer(scope) : velk::com::unregisterServer(scope);
  });
}
