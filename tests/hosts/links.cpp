// The links as a host sees them, against a simulated controller whose ports the runner tells.

#include <cstring>
#include <string>

#include "client.h"

namespace hosts {
namespace {

using std::string_literals::operator""s;

/// Counts the ticks of a window timer: whether the host is alive.
class Ticks {
 public:
  static constexpr unsigned period = 50;  // ms

  Ticks() { count_ = 0; }
  ~Ticks() { KillTimer(nullptr, timer_); }
  Ticks(const Ticks&) = delete;
  Ticks& operator=(const Ticks&) = delete;

  /// A busy machine drops many, but one in ten of those that fit in the time since the start has come.
  [[nodiscard]] bool areAlive() const { return count_ >= elapsed() / period / 10; }

  [[nodiscard]] ULONGLONG elapsed() const { return GetTickCount64() - start_; }

 private:
  static void CALLBACK tick(HWND /*window*/, UINT /*message*/, UINT_PTR /*timer*/, DWORD /*time*/) {
    ++count_;
  }

  static inline ULONGLONG count_ = 0;
  ULONGLONG start_ = GetTickCount64();
  UINT_PTR timer_ = SetTimer(nullptr, 0, period, tick);
};

/// The number of the next handle. The system gives out the lowest one that is free, in steps of four, so that
/// this tells how many are in use where Wine does not.
std::uintptr_t nextHandle() {
  const HANDLE handle = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  CloseHandle(handle);
  return reinterpret_cast<std::uintptr_t>(handle);
}

class Links : public Client {
 protected:
  int open(const char* variable = "VELK_TCP_PORT") {
    Var passWord(L"pass");
    return object_.call(L"OpenTCP", {L"localhost", toldPort(variable), Var::reference(passWord)}).value.bVal;
  }
};

TEST_F(Links, waitingKeepsTheHostAlive) {
  const int port = toldPort("VELK_SILENT_PORT");
  {
    // A peer that says nothing: waiting for its greeting takes the whole time.
    const Ticks ticks;
    EXPECT_EQ(object_.call(L"OpenTCP", {L"127.0.0.1", port}).value.bVal, 252);
    EXPECT_GE(ticks.elapsed(), 1450U);
    EXPECT_TRUE(ticks.areAlive());
    object_.call(L"CloseTCP", {});
  }

  PostQuitMessage(7);
  FILETIME ignored{};
  ULARGE_INTEGER before{};
  ULARGE_INTEGER after{};
  GetProcessTimes(GetCurrentProcess(), &ignored, &ignored, &ignored, reinterpret_cast<FILETIME*>(&before));
  object_.call(L"OpenTCP", {L"127.0.0.1", port});
  GetProcessTimes(GetCurrentProcess(), &ignored, &ignored, &ignored, reinterpret_cast<FILETIME*>(&after));
  EXPECT_LT(after.QuadPart - before.QuadPart, 3'000'000U)
      << "0.3 s of processor time; a loop takes all that it can get";
  object_.call(L"CloseTCP", {});
  MSG message{};
  EXPECT_NE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE), 0);
  EXPECT_EQ(message.wParam, 7U);
}

/// Methods found in the type library, and variables of fixed types: texts, numbers, and the arrays of hosts
/// whose texts are no bytes.
TEST_F(Links, earlyBoundCalls) {
  Ref<ITypeInfo> types;
  ASSERT_EQ(object_.dispatch()->GetTypeInfo(0, LOCALE_USER_DEFAULT, types.out()), S_OK);
  /// Arguments from the last to the first.
  const auto call = [&](const wchar_t* name, const std::vector<Var>& arguments) {
    DISPID id = DISPID_UNKNOWN;
    auto* text = const_cast<LPOLESTR>(name);
    types->GetIDsOfNames(&text, 1, &id);
    return object_.invoke(id, DISPATCH_METHOD, arguments).value;
  };
  ASSERT_EQ(open(), 0);
  BSTR mode = nullptr;
  SAFEARRAY* items = nullptr;
  short count = 255;
  EXPECT_EQ(call(L"Ctl_Param", {0, Var::reference(VT_I2, &count), Var::reference(VT_ARRAY | VT_UI1, &items),
                                Var::reference(VT_BSTR, &mode), 5, L"R"})
                .bVal,
            0);
  EXPECT_EQ(Var::textOf(mode), L"T1");
  EXPECT_EQ(count, 12);
  ASSERT_NE(items, nullptr);
  EXPECT_EQ(items->rgsabound[0].cElements, 12U);
  std::memcpy(items->pvData, "\0\xFE\xFF 12 bytes", 12);
  EXPECT_EQ(call(L"WriteCom", {Var::reference(VT_ARRAY | VT_UI1, &items), L"V", 200, 5, 12}).text(), L"\0"s);
  EXPECT_EQ(call(L"ReadCom", {L"V", 200, 5, 12}).text(), L"\0\0\xFE\xFF 12 bytes"s);
  SysFreeString(mode);
  SafeArrayDestroy(items);
  EXPECT_EQ(call(L"CloseTCP", {}).bVal, 0);
}

/// The waits of module services, and answers so quick that nothing is waited for.
TEST_F(Links, modulesAndQuickAnswersKeepTheHostAlive) {
  ASSERT_EQ(open(), 0);
  const Ticks ticks;
  for (int i = 0; i < 4; ++i) {
    BSTR record = nullptr;
    EXPECT_EQ(object_.call(L"Module", {L"R", L"090255", Var::reference(VT_BSTR, &record), 0}).value.bVal, 0);
    EXPECT_GT(SysStringLen(record), 0U);
    SysFreeString(record);
  }
  EXPECT_GE(ticks.elapsed(), 1000U);
  EXPECT_TRUE(ticks.areAlive());
  const Ticks more;
  while (more.elapsed() < 500) object_.call(L"ReadCom", {16, 5, 0, L"V"});
  EXPECT_TRUE(more.areAlive());
  object_.call(L"CloseTCP", {});
}

TEST_F(Links, connectionsLeaveNoHandles) {
  constexpr int cycles = 300;
  const auto connect = [&](const char* variable, int result) {
    EXPECT_EQ(open(variable), result);
    object_.call(L"CloseTCP", {});
  };
  connect("VELK_TCP_PORT", 0);
  const auto before = nextHandle();
  for (int i = 0; i < cycles; ++i) connect("VELK_TCP_PORT", 0);
  EXPECT_LT(nextHandle(), before + cycles);
}

}  // namespace
}  // namespace hosts
