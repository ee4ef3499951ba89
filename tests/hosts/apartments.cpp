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

void dispatchMessagesUntil(HANDLE event) {
  const DWORD longest = 120'000;
  while (MsgWaitForMultipleObjects(1, &event, FALSE, longest, QS_ALLINPUT) == WAIT_OBJECT_0 + 1) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) DispatchMessageW(&message);
  }
}

TEST(Apartments, EachThreadHasItsOwnSocket) {
  constexpr int count = 8;
  std::array<int, count> good{};
  std::vector<std::thread> threads;
  for (int& result : good) {
    threads.push_back(inApartment([&result] {
      const Object object;
      if (object.call(L"OpenTCP", {L"127.0.0.1", toldPort("VELK_TCP_PORT"), L"pass"}).value.bVal != 0) return;
      for (int i = 0; i < 20; ++i) {
        Var mode;
        const Outcome outcome = object.call(L"Ctl_Param", {L"R", 5, Var::reference(mode)});
        if (outcome.value.bVal == 0 && mode.text() == L"T1") ++result;
      }
      object.call(L"CloseTCP", {});
    }));
  }
  for (std::thread& thread : threads) thread.join();
  for (const int result : good) EXPECT_EQ(result, 20);
}

TEST(Apartments, AnObjectWorksFromAnotherApartment) {
  const Object object;
  IStream* stream = nullptr;
  ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IDispatch, object.dispatch(), &stream), S_OK);
  const HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  std::wstring digits;
  HRESULT code = E_FAIL;
  std::thread other = inApartment([&] {
    {
      Ref<IDispatch> proxy;
      code = CoGetInterfaceAndReleaseStream(stream, IID_IDispatch, proxy.outVoid());
      if (SUCCEEDED(code)) digits = Object(std::move(proxy)).call(L"LdZr", {7, 3}).value.text();
    }
    SetEvent(done);
  });
  dispatchMessagesUntil(done);
  other.join();
  CloseHandle(done);
  EXPECT_EQ(code, S_OK);
  EXPECT_EQ(digits, L"007");
}

}  // namespace
}  // namespace hosts
