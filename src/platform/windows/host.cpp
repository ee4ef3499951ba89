#include "platform/host.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

#include "platform/windows/port.h"
#include "platform/windows/process.h"
#include "platform/windows/socket.h"
#include "platform/windows/system_function.h"

namespace velk::platform {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

/// A window that keeps posting messages to itself must not hold up a wait.
constexpr int mostMessages = 500;

/// How long a wait stays away from the message queue once the host's own loop has been told to quit.
constexpr DWORD quitPause = 20;  // ms

constexpr milliseconds longestUndispatched(10);

DWORD wholeMilliseconds(nanoseconds time) {
  constexpr milliseconds longest = std::chrono::hours(24);
  return static_cast<DWORD>(
      std::clamp(std::chrono::ceil<milliseconds>(time), milliseconds::zero(), longest).count());
}

/// Dispatches the messages that wait. False when one of them is the message to quit, which stays in the queue
/// for the host's own loop.
bool dispatchMessages() {
  MSG message;
  for (int i = 0; i < mostMessages && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0; ++i) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return false;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return true;
}

void waitHoldingMessages(HANDLE event, DWORD longest) {
  if (event == nullptr) {
    Sleep(longest);
  } else {
    WaitForSingleObject(event, longest);
  }
}

void waitWithMessages(HANDLE event, DWORD longest) {
  const DWORD count = event == nullptr ? 0 : 1;
  const DWORD news = MsgWaitForMultipleObjectsEx(count, &event, longest, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
  if (news != WAIT_OBJECT_0 + count) return;
  // The message to quit would end each further wait at once.
  if (!dispatchMessages()) waitHoldingMessages(event, std::min(longest, quitPause));
}

class WindowsHost final : public Host {
 public:
  float clock() override {
    FILETIME now;
    FILETIME local;
    systemTime_(&now);
    FileTimeToLocalFileTime(&now, &local);
    const ULARGE_INTEGER ticks{.LowPart = local.dwLowDateTime, .HighPart = local.dwHighDateTime};
    constexpr ULONGLONG second = 10'000'000;
    constexpr ULONGLONG day = 86400 * second;
    return static_cast<float>(static_cast<double>(ticks.QuadPart % day) / second);
  }

  nanoseconds steady() override {
    LARGE_INTEGER ticks;
    QueryPerformanceCounter(&ticks);
    const auto [seconds, rest] = std::lldiv(ticks.QuadPart, ticksPerSecond_);
    return std::chrono::seconds(seconds) + nanoseconds(rest * nanoseconds::period::den / ticksPerSecond_);
  }

  void yield() override { dispatchMessages(); }

  void block(Source source, nanoseconds longest, Messages messages) override {
    if (messages == Messages::dispatched) dispatchWhenDue();
    if (source == Source::socket && socket_.isDead()) return;
    if (source != Source::socket || !socket_.startReceiving()) {
      const auto wait = messages == Messages::dispatched ? waitWithMessages : waitHoldingMessages;
      wait(eventOf(source), wholeMilliseconds(longest));
    }
    if (source == Source::socket) socket_.advance();
  }

  SerialPort& port() override { return port_; }
  Socket& socket() override { return socket_; }

 private:
  /// One quick answer after another leaves no wait in which messages are met.
  void dispatchWhenDue() {
    if (const nanoseconds now = steady(); now - dispatched_ > longestUndispatched) {
      dispatched_ = now;
      dispatchMessages();
    }
  }

  static long long ticksPerSecond() {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return frequency.QuadPart;
  }

  /// The clock that counts finer than the system's ticks, which Windows has from version 8 on; else the
  /// other.
  using SystemTime = void(WINAPI*)(FILETIME*);
  static SystemTime systemTime() {
    const auto precise = systemFunction<SystemTime>(L"kernel32.dll", "GetSystemTimePreciseAsFileTime");
    return precise != nullptr ? precise : &GetSystemTimeAsFileTime;
  }

  [[nodiscard]] HANDLE eventOf(Source source) const {
    if (source == Source::nothing) return nullptr;
    return source == Source::socket ? socket_.event() : port_.event();
  }

  const long long ticksPerSecond_ = ticksPerSecond();
  const SystemTime systemTime_ = systemTime();
  nanoseconds dispatched_ = nanoseconds::min() / 2;
  WindowsSerialPort port_;
  WindowsSocket socket_;
};

/// The hosts of all threads. Each ends with its thread, or with this module where that is unloaded earlier: a
/// `thread_local` object would keep the module loaded for ever. At the end of the process they are left to
/// the system.
class ThreadHosts {
 public:
  ThreadHosts() : slot_(FlsAlloc(end)) {}
  ~ThreadHosts() {
    if (!processIsEnding()) FlsFree(slot_);
  }
  ThreadHosts(const ThreadHosts&) = delete;
  ThreadHosts& operator=(const ThreadHosts&) = delete;

  Host& ofThisThread() const {
    if (void* const present = FlsGetValue(slot_)) return *static_cast<WindowsHost*>(present);
    auto host = std::make_unique<WindowsHost>();
    if (FlsSetValue(slot_, host.get()) == 0) throw std::bad_alloc();
    return *host.release();
  }

 private:
  static void WINAPI end(void* host) {
    if (!processIsEnding()) delete static_cast<WindowsHost*>(host);
  }

  DWORD slot_;
};

}  // namespace

Host& threadHost() {
  static const ThreadHosts hosts;
  return hosts.ofThisThread();
}

}  // namespace velk::platform
