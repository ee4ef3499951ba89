// The links as a host sees them, against a simulated controller whose ports the runner tells.

#include "client.h"

namespace hosts {
namespace {

/// Counts the ticks of a window timer: whether the host is alive.
class Ticks {
 public:
  Ticks() { count_ = 0; }
  ~Ticks() { KillTimer(nullptr, timer_); }
  Ticks(const Ticks&) = delete;
  Ticks& operator=(const Ticks&) = delete;

  /// A busy machine drops many, but one in ten of those that fit in the time since the start has come.
  [[nodiscard]] bool areAlive() const { return count_ >= elapsed() / period / 10; }

  [[nodiscard]] ULONGLONG elapsed() const { return GetTickCount64() - start_; }

 private:
  static constexpr unsigned period = 50;  // ms
  static void CALLBACK tick(HWND, UINT, UINT_PTR, DWORD) { ++count_; }

  static inline ULONGLONG count_ = 0;
  ULONGLONG start_ = GetTickCount64();
  UINT_PTR timer_ = SetTimer(nullptr, 0, period, tick);
};

class Links : public Client {
 protected:
  int open(const char* variable = "VELK_TCP_PORT") {
    return object_.number(L"OpenTCP", {L"localhost", toldPort(variable), L"pass"});
  }
  int close() { return object_.number(L"CloseTCP"); }
};

ULONGLONG processorTime() {
  FILETIME ignored{};
  ULARGE_INTEGER time{};
  GetProcessTimes(GetCurrentProcess(), &ignored, &ignored, &ignored, reinterpret_cast<FILETIME*>(&time));
  return time.QuadPart;
}

/// A peer that says nothing: waiting for its greeting takes the whole time.
TEST_F(Links, waitingKeepsTheHostAlive) {
  PostQuitMessage(7);
  const Ticks ticks;
  const auto before = processorTime();
  EXPECT_EQ(open("VELK_SILENT_PORT"), 252);
  EXPECT_GE(ticks.elapsed(), 1450U);
  EXPECT_LT(processorTime() - before, 3'000'000U) << "0.3 s; a loop takes all that it can get";
  close();
  MSG message{};
  EXPECT_NE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE), 0);
  EXPECT_EQ(message.wParam, 7U);
  const Ticks more;
  EXPECT_EQ(open("VELK_SILENT_PORT"), 252);
  EXPECT_TRUE(more.areAlive());
  close();
}

/// The waits of module services, and answers so quick that nothing is waited for.
TEST_F(Links, modulesAndQuickAnswersKeepTheHostAlive) {
  ASSERT_EQ(open(), 0);
  const Ticks ticks;
  for (int i = 0; i < 4; ++i) {
    Var record;
    EXPECT_EQ(object_.number(L"Module", {L"R", L"090255", reference(record), 0}), 0);
    EXPECT_GT(_bstr_t(record).length(), 0U);
  }
  EXPECT_GE(ticks.elapsed(), 1000U);
  EXPECT_TRUE(ticks.areAlive());
  const Ticks more;
  while (more.elapsed() < 500) object_.call(L"ReadCom", {16, 5, 0, L"V"});
  EXPECT_TRUE(more.areAlive());
  close();
}

/// The system gives out the lowest handle that is free, in steps of four, so that the number of the next one
/// tells how many are in use where Wine does not.
TEST_F(Links, connectionsLeaveNoHandles) {
  constexpr int cycles = 300;
  std::uintptr_t first = 0;
  for (int i = 0; i <= cycles; ++i) {
    EXPECT_EQ(open(), 0);
    close();
    const HANDLE next = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    CloseHandle(next);
    if (i == 0) first = reinterpret_cast<std::uintptr_t>(next);
    EXPECT_LT(reinterpret_cast<std::uintptr_t>(next), first + cycles);
  }
}

}  // namespace
}  // namespace hosts
