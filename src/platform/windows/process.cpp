#include "platform/windows/process.h"

#include "platform/windows/system_function.h"

namespace velk::platform {

/// The callbacks for a thread's data run before `DllMain` hears of the end, so that its arguments come too
/// late to tell.
bool processIsEnding() {
  using Question = BOOLEAN(NTAPI*)();
  const auto isEnding = systemFunction<Question>(L"ntdll.dll", "RtlDllShutdownInProgress");
  return isEnding != nullptr && isEnding() != FALSE;
}

}  // namespace velk::platform
