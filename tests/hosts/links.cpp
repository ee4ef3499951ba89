// The links as a host sees them, against a simulated controller whose ports the runner tells.

#include <string>

#include "client.h"

namespace hosts {
namespace {

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

TEST_F(Links, resultsInTheCallersTypes) {
  BSTR passWord = SysAllocString(L"pass");
  ASSERT_EQ(
      object_.call(L"OpenTCP", {L"localhost", toldPort("VELK_TCP_PORT"), Var::reference(VT_BSTR, &passWord)})
          .value.bVal,
      0);
  SysFreeString(passWord);
  const auto read = [&](const Var& mode, const Var& items, const Var& count) {
    const Outcome outcome = object_.call(L"Ctl_Param", {L"R", 5, mode, items, count});
    EXPECT_EQ(outcome.value.vt, SUCCEEDED(outcome.code) ? VT_UI1 : VT_EMPTY);
    EXPECT_EQ(outcome.value.bVal, 0);
    return outcome.code;
  };
  BSTR mode = nullptr;
  BSTR items = nullptr;
  short count = 255;
  EXPECT_EQ(
      read(Var::reference(VT_BSTR, &mode), Var::reference(VT_BSTR, &items), Var::reference(VT_I2, &count)),
      S_OK);
  ASSERT_LT(count, 255);
  EXPECT_EQ(SysStringLen(mode), 2U);
  EXPECT_EQ(SysStringLen(items), static_cast<UINT>(count));

  double real = 255;
  EXPECT_EQ(read(Var(), Var(), Var::reference(VT_R8, &real)), S_OK);
  EXPECT_EQ(real, count);
  Var text(L"255");
  EXPECT_EQ(read(Var(), Var(), Var::reference(text)), S_OK);
  EXPECT_EQ(text.text(), std::to_wstring(count)) << "a text stays a text";
  Var number(5);
  EXPECT_EQ(read(Var::reference(number), Var(), 255), S_OK);
  EXPECT_EQ(number.text(), Var::textOf(mode)) << "a number cannot hold a mode";
  short wrong = 5;
  EXPECT_EQ(read(Var::reference(VT_I2, &wrong), Var(), 255), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(wrong, 5);
  SysFreeString(mode);
  SysFreeString(items);
  EXPECT_EQ(object_.call(L"CloseTCP", {}).value.bVal, 0);
}

/// How a C++ host finds a method: by its name while it runs, or in the type library when it is built.
enum class Binding : std::uint8_t { late, early };

struct Way {
  Binding binding;
  const char* link;  ///< as the runner's table of hosts and links calls it
  const char* port;
};

class EachWay : public Client, public testing::WithParamInterface<Way> {
 protected:
  void SetUp() override {
    Client::SetUp();
    object_.dispatch()->GetTypeInfo(0, LOCALE_USER_DEFAULT, types_.out());
  }

  /// Arguments from the last to the first.
  BYTE call(const wchar_t* name, std::vector<Var> arguments) {
    DISPID id = object_.id(name);
    if (GetParam().binding == Binding::early) {
      id = DISPID_UNKNOWN;
      auto* text = const_cast<LPOLESTR>(name);
      types_->GetIDsOfNames(&text, 1, &id);
    }
    return object_.invoke(id, DISPATCH_METHOD, std::move(arguments)).value.bVal;
  }

  Ref<ITypeInfo> types_;
};

TEST_P(EachWay, readsAnOutput) {
  const std::string link = GetParam().link;
  const int port = toldPort(GetParam().port);
  const bool tcp = link.starts_with("tcp");
  Var passWord(L"pass");
  ASSERT_EQ(tcp ? call(L"OpenTCP", {2, Var::reference(passWord), port, L"127.0.0.1"})
                : call(L"OpenCom", {Var(link == "fast"), 9600, port}),
            0);
  BSTR mode = nullptr;
  BSTR items = nullptr;
  short count = 255;
  EXPECT_EQ(call(L"Ctl_Param", {0, Var::reference(VT_I2, &count), Var::reference(VT_BSTR, &items),
                                Var::reference(VT_BSTR, &mode), 5, L"R"}),
            0);
  EXPECT_EQ(Var::textOf(mode), L"T1");
  EXPECT_EQ(count, 12);
  EXPECT_EQ(SysStringLen(items), 12U);
  SysFreeString(mode);
  SysFreeString(items);
  EXPECT_EQ(call(tcp ? L"CloseTCP" : L"CloseCom", {}), 0);
}

std::string nameOf(const testing::TestParamInfo<Way>& info) {
  return std::string(info.param.binding == Binding::late ? "late_" : "early_") + info.param.link;
}

INSTANTIATE_TEST_SUITE_P(Cpp, EachWay,
                         testing::Values(Way{Binding::late, "tcpQ", "VELK_TCP_PORT"},
                                         Way{Binding::late, "tcpS", "VELK_TCP_S_PORT"},
                                         Way{Binding::late, "echo", "VELK_ECHO_PORT"},
                                         Way{Binding::late, "fast", "VELK_FAST_PORT"},
                                         Way{Binding::early, "tcpQ", "VELK_TCP_PORT"},
                                         Way{Binding::early, "tcpS", "VELK_TCP_S_PORT"},
                                         Way{Binding::early, "echo", "VELK_ECHO_PORT"},
                                         Way{Binding::early, "fast", "VELK_FAST_PORT"}),
                         nameOf);

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
