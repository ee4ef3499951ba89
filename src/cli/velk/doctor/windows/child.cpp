#include "cli/velk/doctor/windows/child.h"

#include <array>
#include <stdexcept>

#include "cli/shared/interrupts.h"
#include "cli/shared/windows/wide.h"

namespace velk::cli {
namespace {

using platform::Handle;
using platform::owned;

void requireDone(BOOL done, const std::string& what) {
  const DWORD error = GetLastError();
  if (done == 0) throw std::runtime_error(what + ": error " + std::to_string(error));
}

/// Ends all its processes when this program is gone, since that closes the only handle. Windows 7 has none
/// for a program that itself belongs to such a job; there the destructors have to do.
HANDLE jobOfAll() {
  static const Handle job = [] {
    Handle made = owned(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(made.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return made;
  }();
  return job.get();
}

/// Some programs do not know their switches between quotation marks. A backslash at the end would hide the
/// mark behind it: folders have none.
std::wstring commandLineOf(const std::filesystem::path& program, const std::vector<std::wstring>& arguments) {
  std::wstring line = L'"' + program.native() + L'"';
  for (const std::wstring& argument : arguments) {
    const bool plain = argument.find(L' ') == std::wstring::npos;
    line += plain ? L' ' + argument : L" \"" + argument + L'"';
  }
  return line;
}

/// Handed down to the child, unlike all others.
SECURITY_ATTRIBUTES handedDown() {
  return {.nLength = sizeof(SECURITY_ATTRIBUTES), .lpSecurityDescriptor = nullptr, .bInheritHandle = TRUE};
}

/// Programs of this project print UTF-8, those of the system the code page of consoles.
UINT codePageOf(const std::string& text) {
  const auto size = static_cast<int>(text.size());
  const bool isUtf8 = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0) != 0;
  return isUtf8 ? CP_UTF8 : CP_OEMCP;
}

}  // namespace

/// No window means a console of its own, so that Ctrl-C comes to this program alone, which ends the child.
Child::Child(const std::filesystem::path& program, const std::vector<std::wstring>& arguments) {
  SECURITY_ATTRIBUTES inherited = handedDown();
  HANDLE readEnd = nullptr;
  HANDLE writeEnd = nullptr;
  requireDone(CreatePipe(&readEnd, &writeEnd, &inherited, 0), "pipe");
  reading_ = owned(readEnd);
  const Handle writing = owned(writeEnd);
  requireDone(SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0), "pipe");
  const Handle nothing = owned(CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                           &inherited, OPEN_EXISTING, 0, nullptr));
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = nothing.get();
  start.hStdOutput = start.hStdError = writing.get();
  PROCESS_INFORMATION made{};
  std::wstring line = commandLineOf(program, arguments);
  requireDone(CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE,
                             CREATE_NO_WINDOW | CREATE_SUSPENDED, nullptr, nullptr, &start, &made),
              utf8Of(program.native()));
  process_ = owned(made.hProcess);
  const Handle thread = owned(made.hThread);
  AssignProcessToJobObject(jobOfAll(), process_.get());
  ResumeThread(thread.get());
}

Child::~Child() {
  constexpr DWORD patience = 5000;  // ms; what it has open, a port, is free only when it has ended
  TerminateProcess(process_.get(), 1);
  WaitForSingleObject(process_.get(), patience);
}

bool Child::wait(std::chrono::seconds longest, WhenInterrupted interrupts,
                 const std::function<bool(const std::string&)>& isEnough) {
  constexpr DWORD interval = 20;  // ms: a pipe cannot be waited for
  const auto end = std::chrono::steady_clock::now() + longest;
  for (;;) {
    const bool ended = WaitForSingleObject(process_.get(), interval) == WAIT_OBJECT_0;
    readWaiting();
    if (ended || (isEnough && isEnough(output_))) return true;
    if (interrupts == WhenInterrupted::stop) checkInterrupt();
    if (std::chrono::steady_clock::now() >= end) return false;
  }
}

void Child::readWaiting() {
  constexpr std::size_t most = 100'000;
  std::array<char, 4096> buffer{};
  DWORD waiting = 0;
  while (PeekNamedPipe(reading_.get(), nullptr, 0, nullptr, &waiting, nullptr) != 0 && waiting > 0) {
    DWORD count = 0;
    if (ReadFile(reading_.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) == 0)
      return;
    if (output_.size() < most) output_.append(buffer.data(), count);
  }
}

std::string Child::output() const {
  const auto size = static_cast<int>(output_.size());
  std::wstring text(output_.size(), L'\0');
  const int length = MultiByteToWideChar(codePageOf(output_), 0, output_.data(), size, text.data(), size);
  text.resize(static_cast<std::size_t>(length));
  std::erase(text, L'\r');
  return utf8Of(text);
}

DWORD Child::exitCode() const {
  DWORD code = STILL_ACTIVE;
  GetExitCodeProcess(process_.get(), &code);
  return code;
}

}  // namespace velk::cli
