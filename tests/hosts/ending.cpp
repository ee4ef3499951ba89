// A host that ends with open links: the component leaves them to the system.

#include "client.h"
#include "support/windows/patched_import.h"

namespace hosts {
namespace {

using velk::test::PatchedImport;

constexpr int closedSomething = 3;

/// In the place of a function that closes; the number and kind of its arguments do not matter.
void closes() {
  TerminateProcess(GetCurrentProcess(), closedSomething);
}

class Ending : public Client {
 protected:
  /// Opens a link and ends the process; `close` before that shows that closing is noticed.
  void end(const wchar_t* open, const std::vector<Var>& arguments, const wchar_t* close) {
    if (object_.number(open, arguments) != 0) ExitProcess(2);
    HMODULE const component = GetModuleHandleW(L"VelkCom.dll");
    const auto* const substitute = reinterpret_cast<const void*>(&closes);
    const PatchedImport socket(component, L"ws2_32.dll", "closesocket", substitute);
    const PatchedImport port(component, L"kernel32.dll", "CancelIoEx", substitute);
    if (!socket.isThere() || !port.isThere()) ExitProcess(1);
    if (close != nullptr) object_.call(close, {});
    ExitProcess(0);
  }
};

using testing::ExitedWithCode;

TEST_F(Ending, closesNothing) {
  const std::vector<Var> server{L"127.0.0.1", toldPort("VELK_TCP_S_PORT")};
  const std::vector<Var> line{toldPort("VELK_FAST_PORT"), 9600, true};
  EXPECT_EXIT(end(L"OpenTCP", server, nullptr), ExitedWithCode(0), "");
  EXPECT_EXIT(end(L"OpenTCP", server, L"CloseTCP"), ExitedWithCode(closedSomething), "");
  EXPECT_EXIT(end(L"OpenCom", line, nullptr), ExitedWithCode(0), "");
  EXPECT_EXIT(end(L"OpenCom", line, L"CloseCom"), ExitedWithCode(closedSomething), "");
}

}  // namespace
}  // namespace hosts
