#include "cli/velk/doctor/windows/lines.h"

#include <windows.h>

#include <array>
#include <stdexcept>

#include "cli/velk/doctor/windows/system_facts.h"
#include "link/wait.h"
#include "platform/windows/comm_state.h"

namespace velk::cli {
namespace {

void requireCall(BOOL done, int port, const char* call) {
  const DWORD error = GetLastError();
  if (done != 0) return;
  throw std::runtime_error("COM" + std::to_string(port) + ": " + call + ": error " + std::to_string(error));
}

platform::Handle openLine(int port) {
  const std::wstring path = L"\\\\.\\COM" + std::to_wstring(port);
  platform::Handle line = platform::owned(
      CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  requireCall(line ? TRUE : FALSE, port, "CreateFile");
  return line;
}

DCB stateOf(const platform::Handle& line, int port) {
  DCB state{};
  state.DCBlength = sizeof state;
  requireCall(GetCommState(line.get(), &state), port, "GetCommState");
  return state;
}

/// Returns what was asked for.
DCB set(const platform::Handle& line, int port) {
  DCB state = stateOf(line, port);
  platform::apply({}, state);
  requireCall(SetCommState(line.get(), &state), port, "SetCommState");
  return state;
}

struct LineSetting {
  const char* name;
  DWORD (*of)(const DCB&);
};

constexpr std::array lineSettings{
    LineSetting{"BaudRate", [](const DCB& state) { return state.BaudRate; }},
    LineSetting{"ByteSize", [](const DCB& state) { return DWORD{state.ByteSize}; }},
    LineSetting{"Parity", [](const DCB& state) { return DWORD{state.Parity}; }},
    LineSetting{"StopBits", [](const DCB& state) { return DWORD{state.StopBits}; }},
    LineSetting{"fDtrControl", [](const DCB& state) { return DWORD{state.fDtrControl}; }},
    LineSetting{"fRtsControl", [](const DCB& state) { return DWORD{state.fRtsControl}; }},
    LineSetting{"fOutxCtsFlow", [](const DCB& state) { return DWORD{state.fOutxCtsFlow}; }},
    LineSetting{"fOutxDsrFlow", [](const DCB& state) { return DWORD{state.fOutxDsrFlow}; }},
    LineSetting{"fOutX", [](const DCB& state) { return DWORD{state.fOutX}; }},
    LineSetting{"fInX", [](const DCB& state) { return DWORD{state.fInX}; }},
    LineSetting{"fAbortOnError", [](const DCB& state) { return DWORD{state.fAbortOnError}; }},
};

/// What has come in or gone wrong since the last call.
DWORD errorsOf(const platform::Handle& line, int port) {
  DWORD errors = 0;
  requireCall(ClearCommError(line.get(), &errors, nullptr), port, "ClearCommError");
  return errors;
}

bool seesBreak(const platform::Handle& line, int port) {
  constexpr DWORD interval = 20;  // ms
  for (int i = 0; i < 50; ++i) {
    if ((errorsOf(line, port) & CE_BREAK) != 0) return true;
    Sleep(interval);
  }
  return false;
}

/// Returns how long the line was held, in milliseconds.
double sendBreak(int port) {
  constexpr link::Seconds asked(0.01);
  platform::Host& host = platform::threadHost();
  host.port().open(port, {});
  host.port().setBreak(true);
  const auto start = host.steady();
  link::pause(host, asked, platform::Messages::held);
  const auto lasted = host.steady() - start;
  host.port().setBreak(false);
  host.port().close();
  return std::chrono::duration<double, std::milli>(lasted).count();
}

}  // namespace

Finding checkLineSettings(int port) {
  const platform::Handle line = openLine(port);
  const DCB wanted = set(line, port);
  const DCB got = stateOf(line, port);
  std::string differences;
  for (const LineSetting& setting : lineSettings) {
    if (setting.of(got) == setting.of(wanted)) continue;
    differences += std::string(setting.name) + " is " + std::to_string(setting.of(got)) + ", set to " +
                   std::to_string(setting.of(wanted)) + "; ";
  }
  return findingOf(differences, "9600 bit/s, 8N1, no handshake, DTR and RTS on");
}

Finding checkBreak(int port, int otherPort) {
  const platform::Handle other = openLine(otherPort);
  set(other, otherPort);
  errorsOf(other, otherPort);
  const double lasted = sendBreak(port);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "10 ms last %.2f", lasted);
  const std::string length = text.data();
  if (lasted < 10) return findingOf(length);
  if (seesBreak(other, otherPort)) return findingOf("", length);
  const std::string unseen = length + "; COM" + std::to_string(otherPort) + " has seen no break";
  return isWine() ? leftOut(unseen + ", which Wine does not tell") : findingOf(unseen);
}

}  // namespace velk::cli
