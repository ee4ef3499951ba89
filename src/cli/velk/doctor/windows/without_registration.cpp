#include <windows.h>

#include <iostream>

#include "cli/shared/exit_status.h"
#include "cli/shared/windows/wide.h"
#include "cli/velk/doctor/component_state.h"
#include "cli/velk/doctor/self_check.h"

namespace velk::cli {
namespace {

/// Programs whose manifest names the component have this from their start. The system makes no context for a
/// manifest whose assemblies are not all there, and looks there before it looks at what is registered.
class ManifestInForce {
 public:
  ManifestInForce(const std::wstring& manifest, const std::wstring& folder) {
    ACTCTXW wanted{};
    wanted.cbSize = sizeof wanted;
    wanted.dwFlags = ACTCTX_FLAG_ASSEMBLY_DIRECTORY_VALID;
    wanted.lpSource = manifest.c_str();
    wanted.lpAssemblyDirectory = folder.c_str();
    context_ = CreateActCtxW(&wanted);
    isActive_ = context_ != INVALID_HANDLE_VALUE && ActivateActCtx(context_, &cookie_) != 0;
    error_ = GetLastError();
  }
  ~ManifestInForce() {
    if (isActive_) DeactivateActCtx(0, cookie_);
    if (context_ != INVALID_HANDLE_VALUE) ReleaseActCtx(context_);
  }
  ManifestInForce(const ManifestInForce&) = delete;
  ManifestInForce& operator=(const ManifestInForce&) = delete;

  /// Of the system; 0 when the manifest is in force.
  [[nodiscard]] DWORD error() const { return isActive_ ? 0 : error_; }

 private:
  HANDLE context_;
  ULONG_PTR cookie_ = 0;
  bool isActive_;
  DWORD error_;
};

}  // namespace

int useWithoutRegistration(const std::string& manifest, const std::string& folder) {
  const ManifestInForce inForce(wideOf(manifest), wideOf(folder));
  if (inForce.error() != 0) {
    std::cout << "the manifest is refused, error " << inForce.error() << '\n';
    return badResult;
  }
  const std::uint32_t result = tryToCreate();
  std::cout << (result == 0 ? "created, and it answers" : failureOf({.result = result})) << '\n';
  return result == 0 ? success : badResult;
}

}  // namespace velk::cli
