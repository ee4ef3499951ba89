// What the serial port asks of the system, and what it makes of the answers.

#include "platform/windows/port.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstring>
#include <thread>
#include <vector>

#include "platform/host.h"
#include "support/bytes.h"
#include "support/windows/patched_import.h"

namespace velk::platform {
namespace {

using test::errorOf;
using test::PatchedImport;

/// A driver that a test sets up; the port's calls come here.
struct Driver {
  DWORD openError = 0;
  std::string opened;  ///< the last device that was asked for
  HANDLE device = nullptr;
  bool takesState = true;
  bool takesTimeOuts = true;
  DCB state{};            ///< as another program has left it
  DCB handedOver{};       ///< what the port was set to
  COMMTIMEOUTS timeOuts;  ///< the same
  bool isGone = false;
  DWORD breakError = 0;  ///< 0: the line has a break
  std::vector<DWORD> breaks;
  DWORD waiting = 0;  ///< how many bytes it says it has, for ever
  ULONG_PTR readStatus = 0;
  ULONG_PTR writeStatus = 0;
  DWORD lost = 0;  ///< bytes of each write
  int cancelled = 0;
  std::vector<DWORD> written;
  bool takes = true;            ///< what is written
  std::vector<DWORD> patience;  ///< how long the port was ready to wait for that, in ms
};

Driver driver;

HANDLE WINAPI createFile(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES, DWORD how,
                         DWORD flags, HANDLE) {
  EXPECT_EQ(access, GENERIC_READ | GENERIC_WRITE);
  EXPECT_EQ(share, 0U) << "a port is not shared";
  EXPECT_EQ(how, 3U) << "what is not there is not made";
  EXPECT_EQ(flags, 0x40000000U) << "overlapped";
  driver.opened = path;
  SetLastError(driver.openError);
  if (driver.openError != 0) return INVALID_HANDLE_VALUE;
  return driver.device = CreateEventW(nullptr, TRUE, FALSE, nullptr);
}

BOOL WINAPI getCommState(HANDLE, LPDCB state) {
  EXPECT_EQ(state->DCBlength, sizeof(DCB));
  *state = driver.state;
  return driver.isGone ? FALSE : TRUE;
}

BOOL WINAPI setCommState(HANDLE, LPDCB state) {
  driver.handedOver = *state;
  return driver.takesState ? TRUE : FALSE;
}

BOOL WINAPI setCommTimeouts(HANDLE, LPCOMMTIMEOUTS timeOuts) {
  driver.timeOuts = *timeOuts;
  return driver.takesTimeOuts ? TRUE : FALSE;
}

BOOL WINAPI escapeCommFunction(HANDLE, DWORD function) {
  driver.breaks.push_back(function);
  SetLastError(driver.breakError);
  return driver.breakError == 0 ? TRUE : FALSE;
}

BOOL WINAPI clearCommError(HANDLE, LPDWORD, LPCOMSTAT status) {
  status->cbInQue = driver.waiting;
  return TRUE;
}

void complete(LPOVERLAPPED overlapped, ULONG_PTR status, DWORD count) {
  overlapped->InternalHigh = count;
  overlapped->Internal = status;
  SetEvent(overlapped->hEvent);
}

BOOL pend(LPOVERLAPPED overlapped) {
  ResetEvent(overlapped->hEvent);
  overlapped->Internal = STATUS_PENDING;
  SetLastError(ERROR_IO_PENDING);
  return FALSE;
}

BOOL WINAPI readFile(HANDLE, LPVOID, DWORD size, LPDWORD, LPOVERLAPPED overlapped) {
  if (driver.waiting == 0) return pend(overlapped);
  complete(overlapped, driver.readStatus, size);
  return TRUE;
}

BOOL WINAPI writeFile(HANDLE, LPCVOID, DWORD size, LPDWORD, LPOVERLAPPED overlapped) {
  driver.written.push_back(size);
  if (!driver.takes) return pend(overlapped);
  complete(overlapped, driver.writeStatus, size - driver.lost);
  return TRUE;
}

BOOL WINAPI cancelIoEx(HANDLE device, LPOVERLAPPED overlapped) {
  DWORD flags = 0;
  EXPECT_NE(GetHandleInformation(device, &flags), 0) << "a transfer is cancelled before its device is closed";
  ++driver.cancelled;
  constexpr ULONG_PTR cancelled = 0xC0000120;
  complete(overlapped, cancelled, 0);
  return TRUE;
}

/// No time passes in a test.
DWORD WINAPI waitForSingleObject(HANDLE event, DWORD longest) {
  if (longest == INFINITE) return WaitForSingleObjectEx(event, longest, FALSE);  // not the port's
  driver.patience.push_back(longest);
  return WaitForSingleObjectEx(event, 0, FALSE);
}

bool isClosed(HANDLE handle) {
  DWORD flags = 0;
  return GetHandleInformation(handle, &flags) == 0;
}

class WindowsPort : public testing::Test {
 protected:
  void SetUp() override {
    driver = Driver{};
    for (const PatchedImport* call :
         {&create_, &get_, &set_, &times_, &escape_, &clear_, &read_, &write_, &cancel_, &wait_}) {
      ASSERT_TRUE(call->isThere());
    }
  }

  // The port goes before the calls do.
  const PatchedImport create_ = VELK_PATCH("kernel32.dll", CreateFileA, createFile);
  const PatchedImport get_ = VELK_PATCH("kernel32.dll", GetCommState, getCommState);
  const PatchedImport set_ = VELK_PATCH("kernel32.dll", SetCommState, setCommState);
  const PatchedImport times_ = VELK_PATCH("kernel32.dll", SetCommTimeouts, setCommTimeouts);
  const PatchedImport escape_ = VELK_PATCH("kernel32.dll", EscapeCommFunction, escapeCommFunction);
  const PatchedImport clear_ = VELK_PATCH("kernel32.dll", ClearCommError, clearCommError);
  const PatchedImport read_ = VELK_PATCH("kernel32.dll", ReadFile, readFile);
  const PatchedImport write_ = VELK_PATCH("kernel32.dll", WriteFile, writeFile);
  const PatchedImport cancel_ = VELK_PATCH("kernel32.dll", CancelIoEx, cancelIoEx);
  const PatchedImport wait_ = VELK_PATCH("kernel32.dll", WaitForSingleObject, waitForSingleObject);

  WindowsSerialPort port;
};

/// A state full of ones has every handshake on that there is, and equal characters for both ends of one; the
/// driver's own limits and what has no name stay.
TEST_F(WindowsPort, EveryFieldOfTheStateThatMattersIsSet) {
  using Words = std::array<std::uint32_t, sizeof(DCB) / 4>;
  using TimeOuts = std::array<DWORD, 5>;
  const struct {
    int fill;
    const char* settings;
    Words expected;  ///< length, rate, flags, limits, size and parity, stop bits and characters
  } rows[] = {{0xFF, "9600,N,8,1", {28, 9600, 0xFFFF9093, 0xFFFF0000, 0x0008FFFF, 0xFF131100, 0xFFFFFFFF}},
              {0, "9600,N,8,1", {28, 9600, 0x1013, 0, 0x00080000, 0x131100, 0}},
              {0, "300,E,7,1", {28, 300, 0x1013, 0, 0x02070000, 0x131100, 0}},
              {0, "1200,O,5,1.5", {28, 1200, 0x1013, 0, 0x01050000, 0x131101, 0}},
              {0, "115200,M,8,2", {28, 115200, 0x1013, 0, 0x03080000, 0x131102, 0}},
              {0, "9600,S,6,1", {28, 9600, 0x1013, 0, 0x04060000, 0x131100, 0}}};
  for (const auto& row : rows) {
    std::memset(&driver.state, row.fill, sizeof driver.state);
    port.open(1, parseSettings(row.settings));
    EXPECT_EQ(std::bit_cast<Words>(driver.handedOver), row.expected) << row.settings;
    EXPECT_EQ(std::bit_cast<TimeOuts>(driver.timeOuts), TimeOuts{});
    port.close();
  }
}

TEST_F(WindowsPort, WhatCannotBeOpenedIsTold) {
  const struct {
    DWORD openError;
    bool isGone, takesState, takesTimeOuts;
    int error;
  } rows[] = {{ERROR_ACCESS_DENIED, false, true, true, 8005},
              {ERROR_SHARING_VIOLATION, false, true, true, 8005},
              {ERROR_FILE_NOT_FOUND, false, true, true, 8002},
              {ERROR_GEN_FAILURE, false, true, true, 8002},
              {0, true, true, true, 8002},
              {0, false, false, true, 380},
              {0, false, true, false, 380}};
  for (const auto& row : rows) {
    driver.openError = row.openError;
    driver.isGone = row.isGone;
    driver.takesState = row.takesState;
    driver.takesTimeOuts = row.takesTimeOuts;
    EXPECT_EQ(errorOf([&] { port.open(17, {}); }), row.error) << row.openError;
    EXPECT_EQ(driver.opened, R"(\\.\COM17)");
    EXPECT_FALSE(port.isOpen());
    EXPECT_EQ(openDevices(), 0);
    EXPECT_TRUE(isClosed(driver.device));
  }
  driver = {};
  EXPECT_EQ(errorOf([&] { port.open(0, {}); }), 8002);
  EXPECT_EQ(driver.opened, "") << "no port has that number";
  EXPECT_EQ(errorOf([&] { port.close(); }), 8012);
  EXPECT_EQ(errorOf([&] { port.read(); }), 8018);
  EXPECT_EQ(errorOf([&] { port.write("x"); }), 8018);
  EXPECT_EQ(errorOf([&] { port.setBreak(true); }), 8018);
  port.open(255, {});
  EXPECT_EQ(driver.opened, R"(\\.\COM255)");
  EXPECT_EQ(errorOf([&] { port.open(1, {}); }), 8005);
  EXPECT_TRUE(port.isOpen());
}

/// What is under way fails, and what comes behind it; then the port can be closed and opened anew.
TEST_F(WindowsPort, AnAdapterMayBePulledOut) {
  constexpr ULONG_PTR removed = 0xC00002B6;
  const auto reads = [&] { port.read(); };
  const auto writes = [&] { port.write("xyz"); };
  for (const DWORD lost : {0U, 1U, 3U}) {
    driver = {};
    port.open(1, {});
    EXPECT_TRUE(port.read().empty());
    driver.writeStatus = lost == 0 ? removed : 0;
    driver.lost = lost;
    EXPECT_EQ(errorOf(writes), 8020) << lost << " bytes lost";
    driver.waiting = 1;
    driver.readStatus = removed;
    port.close();
    EXPECT_TRUE(isClosed(driver.device));
    port.open(1, {});
    EXPECT_EQ(WaitForSingleObjectEx(port.event(), 0, FALSE), WAIT_OBJECT_0) << "whoever waits learns of it";
    for (int i = 0; i < 2; ++i) EXPECT_EQ(errorOf(reads), 8020);
    port.close();
    EXPECT_EQ(openDevices(), 0);
  }
}

TEST_F(WindowsPort, AThreadMayEndWithAnOpenPort) {
  std::thread([] {
    threadHost().port().open(1, {});
    EXPECT_EQ(openDevices(), 1);
  }).join();
  EXPECT_EQ(openDevices(), 0);
  EXPECT_EQ(driver.cancelled, 1) << "the reading that runs while a port is open";
  EXPECT_TRUE(isClosed(driver.device));
}

TEST_F(WindowsPort, ALineWithoutABreakIsNoFailure) {
  port.open(1, {});
  port.setBreak(true);
  port.setBreak(false);
  EXPECT_EQ(driver.breaks, (std::vector<DWORD>{8, 9}));
  for (const DWORD error : {ERROR_INVALID_FUNCTION, ERROR_NOT_SUPPORTED, ERROR_GEN_FAILURE}) {
    driver.breakError = error;
    for (const bool on : {true, false}) {
      driver.isGone = false;
      EXPECT_EQ(errorOf([&] { port.setBreak(on); }), 0) << error;
      driver.isGone = true;
      EXPECT_EQ(errorOf([&] { port.setBreak(on); }), 8020) << error << ", and the device is gone";
    }
  }
}

TEST_F(WindowsPort, OneReadOfAFloodIsBounded) {
  driver.waiting = 28'000'000;
  port.open(1, {});
  for (int i = 0; i < 3; ++i) {
    const auto size = port.read().size();
    EXPECT_GE(size, 4096U);
    EXPECT_LE(size, 2 * 65536U);
  }
  driver.waiting = 0;
  port.read();
  EXPECT_TRUE(port.read().empty());
}

/// 9600 bit/s are 2 ms for a byte, rounded up.
TEST_F(WindowsPort, AWriteWithoutProgressEndsAfterASecond) {
  port.open(1, {});
  port.write(Bytes(16, 'x'));
  EXPECT_TRUE(driver.patience.empty()) << "taken at once";
  port.write(Bytes(130, 'x'));
  EXPECT_EQ(driver.written, (std::vector<DWORD>{16, 64, 64, 2}));
  driver.takes = false;
  EXPECT_EQ(errorOf([&] { port.write(Bytes(16, 'x')); }), 8019);
  EXPECT_EQ(errorOf([&] { port.write(Bytes(100'000, 'x')); }), 8019);
  EXPECT_EQ(driver.patience, (std::vector<DWORD>{1000 + 16 * 2, 1000 + 64 * 2}));
  EXPECT_EQ(driver.written.size(), 6U) << "nothing behind what is not taken";
}

}  // namespace
}  // namespace velk::platform
