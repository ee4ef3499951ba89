// A host that ends with open links: the component leaves them to the system.

#include "client.h"
#include "support/windows/patched_import.h"

namespace hosts {
namespace {

using velk::test::PatchedImport;

constexpr int closedSomething = 3;

int WINAPI closeSocket(SOCKET) {
  TerminateProcess(GetCurrentProcess(), closedSomething);
  return 0;
}

BOOL WINAPI cancel(HANDLE, LPOVERLAPPED) {
  TerminateProcess(GetCurrentProcess(), closedSomething);
  return FALSE;
}

class Ending : public Client {
 protected:
  /// Ends the process; `close` before that is for the counterpart that shows that closing is noticed.
  void end(const wchar_t* close) {
    HMODULE const component = GetModuleHandleW(L"VelkCom.dll");
    const PatchedImport socket(component, L"ws2_32.dll", "closesocket",
                               reinterpret_cast<const void*>(&closeSocket));
    const PatchedImport port(component, L"kernel32.dll", "CancelIoEx",
                             reinterpret_cast<const void*>(&cancel));
    if (!socket.isThere() || !port.isThere()) ExitProcess(1);
    if (close != nullptr) object_.call(close, {});
    ExitProcess(0);
  }

  void endConnected(const wchar_t* close) {
    if (object_.call(L"OpenTCP", {L"127.0.0.1", toldPort("VELK_TCP_S_PORT")}).value.bVal != 0) ExitProcess(2);
    end(close);
  }

  void endWithPort(const wchar_t* close) {
    if (object_.call(L"OpenCom", {toldPort("VELK_FAST_PORT"), 9600, true}).value.bVal != 0) ExitProcess(2);
    end(close);
  }
};

using testing::ExitedWithCode;

TEST_F(Ending, closesNothing) {
  EXPECT_EXIT(endConnected(nullptr), ExitedWithCode(0), "");
  EXPECT_EXIT(endConnected(L"CloseTCP"), ExitedWithCode(closedSomething), "") << "closing is noticed";
  EXPECT_EXIT(endWithPort(nullptr), ExitedWithCode(0), "");
  EXPECT_EXIT(endWithPort(L"CloseCom"), ExitedWithCode(closedSomething), "") << "closing is noticed";
}

}  // namespace
}  // namespace hosts
