#include "com/server.h"

#include <atomic>
#include <stdexcept>

#include "platform/host.h"

/// The start of this module in memory, which is also its handle; the linker knows it by this name.
extern "C" IMAGE_DOS_HEADER __ImageBase;  // NOLINT(bugprone-reserved-identifier): see above

namespace velk::com {
namespace {

std::atomic<long> references{0};

}  // namespace

void addServerReference() {
  ++references;
}

void releaseServerReference() {
  --references;
}

bool mayUnload() {
  return references == 0 && platform::openDevices() == 0;
}

std::wstring modulePath() {
  auto* const module = reinterpret_cast<HMODULE>(&__ImageBase);
  // The call cuts a path that does not fit, and then fills all that it was given.
  for (std::wstring path(MAX_PATH, L'\0');; path.resize(2 * path.size())) {
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) throw std::runtime_error("the component's file has no path");
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
  }
}

}  // namespace velk::com
