#include "cli/shared/system_files.h"

#include <array>
#include <iostream>
#include <system_error>

#include "cli/shared/windows/wide.h"
#include "platform/windows/handle.h"

namespace velk::cli::system {
namespace {

using platform::Handle;
using platform::owned;

constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

[[noreturn]] void fail() {
  throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
}

void check(bool succeeded) {
  if (!succeeded) fail();
}

Handle openFile(const std::wstring& path, DWORD access, DWORD disposition) {
  return owned(
      CreateFileW(path.c_str(), access, shared, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

/// Pieces that every device takes: a console has a limit.
void writeAll(HANDLE handle, std::string_view text) {
  constexpr std::size_t piece = 16384;
  while (!text.empty()) {
    DWORD written = 0;
    check(WriteFile(handle, text.data(), static_cast<DWORD>(std::min(text.size(), piece)), &written,
                    nullptr) != 0);
    text.remove_prefix(written);
  }
}

class OpenFile final : public Sink {
 public:
  explicit OpenFile(Handle handle) : handle_(std::move(handle)) {}

  void write(std::string_view text) override { writeAll(handle_.get(), text); }

 private:
  Handle handle_;
};

/// Belongs to the program as a whole, and is not closed.
class StandardOutput final : public Sink {
 public:
  void write(std::string_view text) override {
    std::cout.flush();
    writeAll(GetStdHandle(STD_OUTPUT_HANDLE), text);
  }
};

/// A new file beside another one, which is removed unless it takes that one's place.
class Successor {
 public:
  explicit Successor(const std::wstring& file) {
    const std::wstring start = file.substr(0, file.find_last_of(L"\\/") + 1) + L".velk-" +
                               std::to_wstring(GetCurrentProcessId()) + L"-";
    for (int number = 0; !handle_ && (number == 0 || GetLastError() == ERROR_FILE_EXISTS); ++number) {
      name_ = start + std::to_wstring(number);
      handle_ = openFile(name_, GENERIC_WRITE, CREATE_NEW);
    }
    check(static_cast<bool>(handle_));
  }
  ~Successor() {
    handle_.reset();
    if (!name_.empty()) DeleteFileW(name_.c_str());
  }
  Successor(const Successor&) = delete;
  Successor& operator=(const Successor&) = delete;

  [[nodiscard]] HANDLE get() const { return handle_.get(); }

  /// `ReplaceFileW` keeps attributes and access rights of the file before; some file systems cannot do that,
  /// and it wants a file that is there.
  void takePlaceOf(const std::wstring& file) {
    check(FlushFileBuffers(get()) != 0);
    handle_.reset();
    const bool kept = ReplaceFileW(file.c_str(), name_.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS,
                                   nullptr, nullptr) != 0;
    // Without a name for the file before, this failure has removed that, and the new one is all there is.
    const bool isAlone = !kept && GetLastError() == ERROR_UNABLE_TO_MOVE_REPLACEMENT;
    const bool moved = kept || MoveFileExW(name_.c_str(), file.c_str(),
                                           MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
    if (moved || isAlone) name_.clear();
    check(moved);
  }

 private:
  std::wstring name_;
  Handle handle_;
};

/// Some file systems have no such names; then the path stands as it is.
std::wstring behindLinks(HANDLE file, const std::wstring& path) {
  const DWORD size = GetFinalPathNameByHandleW(file, nullptr, 0, VOLUME_NAME_DOS);
  if (size == 0) return path;
  std::wstring name(size, L'\0');
  const DWORD length = GetFinalPathNameByHandleW(file, name.data(), size, VOLUME_NAME_DOS);
  if (length == 0 || length >= size) return path;
  name.resize(length);
  return name;
}

}  // namespace

/// Nothing takes their places here.
void holdStandardStreams() {}

std::string read(const std::string& path, std::size_t atMost) {
  const bool standard = path == standardStream;
  const Handle file = standard ? nullptr : openFile(wideOf(path), GENERIC_READ, OPEN_EXISTING);
  check(standard || file);
  HANDLE const handle = standard ? GetStdHandle(STD_INPUT_HANDLE) : file.get();
  std::string text;
  std::array<char, 65536> buffer{};
  while (true) {
    DWORD n = 0;
    const bool done = ReadFile(handle, buffer.data(), static_cast<DWORD>(buffer.size()), &n, nullptr) != 0;
    if (!done && GetLastError() == ERROR_BROKEN_PIPE) return text;  // its other end is closed
    check(done);
    if (n == 0) return text;
    text.append(buffer.data(), n);
    if (text.size() > atMost) throw std::system_error(std::make_error_code(std::errc::file_too_large));
  }
}

Destination open(const std::string& path) {
  if (path == standardStream) return {.file = {}, .sink = std::make_unique<StandardOutput>()};
  const std::wstring name = wideOf(path);
  Handle handle = openFile(name, GENERIC_WRITE, OPEN_EXISTING);
  const bool isNew = !handle && GetLastError() == ERROR_FILE_NOT_FOUND;
  // Made for a moment: that tells whether it can be, and where a link leads that leads nowhere yet.
  if (isNew) handle = openFile(name, GENERIC_WRITE, CREATE_NEW);
  check(static_cast<bool>(handle));
  if (GetFileType(handle.get()) != FILE_TYPE_DISK) {
    return {.file = {}, .sink = std::make_unique<OpenFile>(std::move(handle))};
  }
  const std::wstring file = behindLinks(handle.get(), name);
  handle.reset();
  if (isNew) DeleteFileW(file.c_str());
  const Successor inItsFolder(file);
  return {.file = utf8Of(file), .sink = nullptr};
}

std::unique_ptr<Sink> create(const std::string& file) {
  Handle handle = openFile(wideOf(file), GENERIC_WRITE, CREATE_ALWAYS);
  check(static_cast<bool>(handle));
  return std::make_unique<OpenFile>(std::move(handle));
}

/// A new file has the access rights that its folder hands down.
void replace(const std::string& file, const std::string& /*like*/, std::string_view text) {
  const std::wstring name = wideOf(file);
  Successor successor(name);
  writeAll(successor.get(), text);
  successor.takePlaceOf(name);
}

bool rename(const std::string& from, const std::string& to) {
  if (MoveFileExW(wideOf(from).c_str(), wideOf(to).c_str(), MOVEFILE_WRITE_THROUGH) != 0) return true;
  if (GetLastError() == ERROR_ALREADY_EXISTS || GetLastError() == ERROR_FILE_EXISTS) return false;
  fail();
}

void remove(const std::string& file) noexcept {
  DeleteFileW(wideOf(file).c_str());
}

}  // namespace velk::cli::system
