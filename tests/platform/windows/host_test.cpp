// The clock, the waits and the look-ups of a thread's host, with the system's calls in the test's hands.

#include "platform/host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>
#include <thread>

#include "link/wait.h"
#include "support/bytes.h"
#include "support/windows/patched_import.h"

namespace velk::platform {
namespace {

using namespace std::chrono_literals;
using test::errorOf;
using test::PatchedImport;

constexpr ULONGLONG second = 10'000'000;
constexpr ULONGLONG day = 86400 * second;
constexpr ULONGLONG evening = 150'000 * day + 20 * 3600 * second;  // 20:00

FILETIME fileTime(ULONGLONG ticks) {
  return {.dwLowDateTime = static_cast<DWORD>(ticks), .dwHighDateTime = static_cast<DWORD>(ticks >> 32U)};
}

ULONGLONG ticksOf(const FILETIME& time) {
  return (static_cast<ULONGLONG>(time.dwHighDateTime) << 32U) + time.dwLowDateTime;
}

void WINAPI preciseTime(LPFILETIME time) {
  *time = fileTime(evening + second / 4);
}

/// A clock that moves with the ticks of 15.6 ms, as that of Windows 7 does.
void WINAPI tickingTime(LPFILETIME time) {
  constexpr ULONGLONG tick = 156'250;
  LARGE_INTEGER count;
  LARGE_INTEGER frequency;
  QueryPerformanceCounter(&count);
  QueryPerformanceFrequency(&frequency);
  const auto now = static_cast<ULONGLONG>(static_cast<long double>(count.QuadPart) /
                                          static_cast<long double>(frequency.QuadPart) * second);
  *time = fileTime(evening + now % (3600 * second) / tick * tick);
}

/// Two hours east of Greenwich.
BOOL WINAPI localTime(const FILETIME* utc, LPFILETIME local) {
  EXPECT_NE(utc, local) << "the system does not take the same place for both";
  *local = fileTime(ticksOf(*utc) + 2 * 3600 * second);
  return TRUE;
}

BOOL WINAPI sameTime(const FILETIME* utc, LPFILETIME local) {
  *local = *utc;
  return TRUE;
}

bool isWindows7 = false;

/// Asked for by name: the compiler would take its address from the import that is patched.
const auto systemsOwnFind = reinterpret_cast<decltype(&GetProcAddress)>(
    reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetProcAddress")));

FARPROC WINAPI find(HMODULE module, LPCSTR name) {
  using namespace std::string_view_literals;
  if (name != "GetSystemTimePreciseAsFileTime"sv) return systemsOwnFind(module, name);
  return isWindows7 ? nullptr : reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&preciseTime));
}

/// Runs a step on a thread of its own, whose host is a new one.
template <class Step>
void onNewThread(Step step) {
  std::thread(step).join();
}

TEST(WindowsHost, TheClockIsThePreciseOneInLocalTime) {
  const PatchedImport local = VELK_PATCH("kernel32.dll", FileTimeToLocalFileTime, localTime);
  const PatchedImport lookUp = VELK_PATCH("kernel32.dll", GetProcAddress, find);
  const PatchedImport coarse = VELK_PATCH("kernel32.dll", GetSystemTimeAsFileTime, tickingTime);
  ASSERT_TRUE(local.isThere() && lookUp.isThere() && coarse.isThere());
  isWindows7 = false;
  onNewThread([] { EXPECT_EQ(threadHost().clock(), 22 * 3600 + 0.25F); });
  isWindows7 = true;
  onNewThread([] {
    EXPECT_GE(threadHost().clock(), 22 * 3600.0F);
    EXPECT_LT(threadHost().clock(), 23 * 3600.0F);
  });
}

/// Where the clock moves with the ticks alone, and in the evening, where single precision steps by 7.8 ms.
TEST(WindowsHost, APauseLastsItsTimeWhateverTheClockDoes) {
  const PatchedImport local = VELK_PATCH("kernel32.dll", FileTimeToLocalFileTime, sameTime);
  const PatchedImport lookUp = VELK_PATCH("kernel32.dll", GetProcAddress, find);
  const PatchedImport coarse = VELK_PATCH("kernel32.dll", GetSystemTimeAsFileTime, tickingTime);
  isWindows7 = true;
  onNewThread([] {
    for (int i = 0; i < 30; ++i) {
      const auto start = threadHost().steady();
      link::pause(threadHost(), link::Seconds(0.01), Messages::held);
      EXPECT_GE(threadHost().steady() - start, 10ms);
    }
  });
}

bool waited = false;
void WINAPI sleep(DWORD) {
  waited = true;
}
DWORD WINAPI waitForMessages(DWORD, const HANDLE*, DWORD, DWORD, DWORD) {
  waited = true;
  return WAIT_TIMEOUT;
}

int WSAAPI failAtOnce(SOCKET, const sockaddr*, int) {
  WSASetLastError(WSAENETUNREACH);
  return SOCKET_ERROR;
}

TEST(WindowsHost, NothingToWaitForEndsAWaitAtOnce) {
  const PatchedImport sleeping = VELK_PATCH("kernel32.dll", Sleep, sleep);
  const PatchedImport messages = VELK_PATCH("user32.dll", MsgWaitForMultipleObjectsEx, waitForMessages);
  const PatchedImport connecting = VELK_PATCH("ws2_32.dll", connect, failAtOnce);
  ASSERT_TRUE(sleeping.isThere() && messages.isThere() && connecting.isThere());
  Host& host = threadHost();
  for (const char* const name : {"not connected", "", "127.0.0.1"}) {
    if (name[0] != 'n') host.socket().connect(name, 1);
    EXPECT_TRUE(host.socket().isDead()) << name;
    for (const auto how : {Messages::held, Messages::dispatched}) {
      waited = false;
      host.block(Source::socket, 10s, how);
      EXPECT_FALSE(waited) << name;
    }
    host.socket().close();
  }
}

constexpr std::string_view stale = "answers to earlier requests";
std::size_t unread = 0;

/// May tell of the first piece alone of what waits.
int WSAAPI countFirstPiece(SOCKET socket, long command, u_long* count) {
  const auto ask = static_cast<DWORD>(command);
  DWORD size = 0;
  do {
    if (WSAIoctl(socket, ask, nullptr, 0, count, sizeof *count, &size, nullptr, nullptr) != 0) return -1;
  } while (*count < unread);
  *count = std::min(*count, 5UL);
  unread -= *count;
  return 0;
}

TEST(WindowsHost, NothingStaleIsLeftBehind) {
  const PatchedImport counting = VELK_PATCH("ws2_32.dll", ioctlsocket, countFirstPiece);
  ASSERT_TRUE(counting.isThere());
  WSADATA winsock;
  ASSERT_EQ(WSAStartup(MAKEWORD(2, 2), &winsock), 0);
  Host& host = threadHost();
  const SOCKET listener = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{.sin_family = AF_INET, .sin_addr{.S_un{.S_addr = htonl(INADDR_LOOPBACK)}}};
  int size = sizeof address;
  bind(listener, reinterpret_cast<const sockaddr*>(&address), size);
  ASSERT_EQ(listen(listener, 1), 0);
  ASSERT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
  host.socket().connect("127.0.0.1", ntohs(address.sin_port));
  host.block(Source::socket, 20s, Messages::held);
  const SOCKET peer = accept(listener, nullptr, nullptr);
  unread = stale.size();
  ASSERT_EQ(send(peer, stale.data(), stale.size(), 0), stale.size());
  EXPECT_EQ(host.socket().receive(), stale);
  EXPECT_EQ(host.socket().receive(), "");
  host.socket().close();
  closesocket(peer);
  closesocket(listener);
}

HANDLE WINAPI noThread(LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE, LPVOID, DWORD, LPDWORD) {
  return nullptr;
}
HANDLE WINAPI noEvent(LPSECURITY_ATTRIBUTES, BOOL, BOOL, LPCWSTR) {
  return nullptr;
}

TEST(WindowsHost, ALookUpThatCannotBeStartedLeavesTheSocketClosed) {
  Socket& socket = threadHost().socket();
  const auto fails = [&] {
    EXPECT_EQ(errorOf([&] { socket.connect("localhost", 1); }), 7);
    EXPECT_FALSE(socket.isOpen());
    EXPECT_EQ(openDevices(), 0);
  };
  {
    const PatchedImport thread = VELK_PATCH("kernel32.dll", CreateThread, noThread);
    ASSERT_TRUE(thread.isThere());
    fails();
  }
  {
    const PatchedImport event = VELK_PATCH("kernel32.dll", CreateEventW, noEvent);
    ASSERT_TRUE(event.isThere());
    fails();
  }
  socket.connect("127.0.0.1", 1);
  socket.close();
}

}  // namespace
}  // namespace velk::platform
