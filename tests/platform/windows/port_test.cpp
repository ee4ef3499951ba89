// What the serial port asks of the system, and what it makes of the answers.

#include "platform/windows/port.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/bytes.h"
#include "support/windows/patched_import.h"

namespace velk::platform {
namespace {

using test::errorOf;
using test::PatchedImport;

/// A driver that a test sets up; the port's calls come here.
struct Driver {
  DCB state{};            ///< as another program has left it
  DCB handedOver{};       ///< what the port was set to
  COMMTIMEOUTS timeOuts;  ///< the same
  bool isGone = false;
  DWORD breakError = 0;  ///< 0: the line has a break
  std::vector<DWORD> breaks;
  DWORD waiting = 0;  ///< how many bytes it says it has, for ever
  std::vector<DWORD> written;
  bool takes = true;            ///< what is written
  std::vector<DWORD> patience;  ///< how long the port was ready to wait for that, in ms
};

Driver driver;

HANDLE WINAPI createFile(LPCSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE) {
  return CreateEventW(nullptr, TRUE, FALSE, nullptr);
}

BOOL WINAPI getCommState(HANDLE, LPDCB state) {
  EXPECT_EQ(state->DCBlength, sizeof(DCB));
  *state = driver.state;
  return driver.isGone ? FALSE : TRUE;
}

BOOL WINAPI setCommState(HANDLE, LPDCB state) {
  driver.handedOver = *state;
  return TRUE;
}

BOOL WINAPI setCommTimeouts(HANDLE, LPCOMMTIMEOUTS timeOuts) {
  driver.timeOuts = *timeOuts;
  return TRUE;
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
  complete(overlapped, 0, size);
  return TRUE;
}

BOOL WINAPI writeFile(HANDLE, LPCVOID, DWORD size, LPDWORD, LPOVERLAPPED overlapped) {
  driver.written.push_back(size);
  if (!driver.takes) return pend(overlapped);
  complete(overlapped, 0, size);
  return TRUE;
}

BOOL WINAPI cancelIoEx(HANDLE, LPOVERLAPPED overlapped) {
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

/// A state full of ones has every handshake on that there is, and equal characters for both ends of one.
TEST_F(WindowsPort, EveryFieldOfTheStateThatMattersIsSet) {
  std::fill_n(reinterpret_cast<unsigned char*>(&driver.state), sizeof driver.state, 0xFF);
  port.open(1, {});
  const DCB& state = driver.handedOver;
  EXPECT_EQ(state.DCBlength, sizeof(DCB));
  EXPECT_EQ(state.BaudRate, 9600U);
  EXPECT_EQ(state.ByteSize, 8);
  EXPECT_EQ(state.Parity, 0);
  EXPECT_EQ(state.StopBits, 0);
  EXPECT_EQ(state.fBinary, 1U);
  EXPECT_EQ(state.fParity, 1U);
  EXPECT_EQ(state.fDtrControl, 1U);
  EXPECT_EQ(state.fRtsControl, 1U);
  EXPECT_EQ(state.fOutxCtsFlow, 0U);
  EXPECT_EQ(state.fOutxDsrFlow, 0U);
  EXPECT_EQ(state.fDsrSensitivity, 0U);
  EXPECT_EQ(state.fOutX, 0U);
  EXPECT_EQ(state.fInX, 0U);
  EXPECT_EQ(state.fErrorChar, 0U);
  EXPECT_EQ(state.fNull, 0U);
  EXPECT_EQ(state.fAbortOnError, 0U);
  EXPECT_EQ(state.wReserved, 0);
  EXPECT_EQ(state.XonChar, 0x11);
  EXPECT_EQ(state.XoffChar, 0x13);
  EXPECT_EQ(state.XonLim, 0xFFFF) << "the driver's own limits stay";
  EXPECT_EQ(driver.timeOuts.ReadIntervalTimeout, 0U);
  EXPECT_EQ(driver.timeOuts.ReadTotalTimeoutMultiplier, 0U);
}

TEST_F(WindowsPort, SettingsHaveTheirCodes) {
  const struct {
    const char* settings;
    DWORD baud;
    int size, parity, stop;
  } rows[] = {{"300,E,7,1", 300, 7, 2, 0},
              {"1200,O,5,1.5", 1200, 5, 1, 1},
              {"115200,M,8,2", 115200, 8, 3, 2},
              {"9600,S,6,1", 9600, 6, 4, 0}};
  for (const auto& row : rows) {
    port.open(1, parseSettings(row.settings));
    const DCB& state = driver.handedOver;
    EXPECT_EQ(state.BaudRate, row.baud);
    EXPECT_EQ(state.ByteSize, row.size) << row.settings;
    EXPECT_EQ(state.Parity, row.parity) << row.settings;
    EXPECT_EQ(state.StopBits, row.stop) << row.settings;
    EXPECT_EQ(state.fParity, 1U);
    port.close();
  }
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
