#include <array>
#include <thread>

#include "client.h"

namespace hosts {
namespace {

/// Runs on a thread with an apartment of its own.
template <class Work>
std::thread inApartment(Work work) {
  return std::thread([work] {
    CoInitialize(nullptr);
    work();
    CoUninitialize();
  });
}

TEST(Apartments, EachThreadHasItsOwnSocket) {
  std::array<int, 8> good{};
  std::vector<std::thread> threads;
  for (int& result : good) {
    threads.push_back(inApartment([&result] {
      const Object object;
      if (object.number(L"OpenTCP", {L"127.0.0.1", toldPort("VELK_TCP_PORT"), L"pass"}) != 0) return;
      for (int i = 0; i < 20; ++i) {
        Var mode;
        if (object.number(L"Ctl_Param", {L"R", 5, reference(mode)}) == 0 && _bstr_t(mode) == _bstr_t(L"T1"))
          ++result;
      }
      object.call(L"CloseTCP", {});
    }));
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(good, (std::array<int, 8>{20, 20, 20, 20, 20, 20, 20, 20}));
}

TEST(Apartments, AnObjectWorksFromAnotherApartment) {
  const Object object;
  IStream* stream = nullptr;
  ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IDispatch, object.Get(), &stream), S_OK);
  Var digits;
  HRESULT code = E_FAIL;
  const DWORD caller = GetCurrentThreadId();
  std::thread other = inApartment([&] {
    {
      ComPtr<IDispatch> proxy;
      code = CoGetInterfaceAndReleaseStream(stream, IID_PPV_ARGS(&proxy));
      if (SUCCEEDED(code)) digits = Object(std::move(proxy)).call(L"LdZr", {7, 3}).value;
    }
    PostThreadMessageW(caller, WM_APP, 0, 0);
  });
  // The calls arrive as messages.
  for (MSG message; GetMessageW(&message, nullptr, 0, 0) != 0 && message.message != WM_APP;) {
    DispatchMessageW(&message);
  }
  other.join();
  EXPECT_EQ(code, S_OK);
  EXPECT_EQ(_bstr_t(digits), _bstr_t(L"007"));
}

}  // namespace
}  // namespace hosts
