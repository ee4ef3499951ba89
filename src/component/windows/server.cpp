#include "component/windows/server.h"

#include <atomic>

#include "platform/host.h"

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
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&modulePath), &module);
  constexpr std::size_t longestPath = 32768;
  std::wstring path(longestPath, L'\0');
  path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

}  // namespace velk::com
