#include "cli/shared/system_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <system_error>

#include "platform/posix/fd.h"

namespace velk::cli::system {
namespace {

using platform::Fd;

constexpr mode_t permissions = 07777;

[[noreturn]] void fail() {
  throw std::system_error(errno, std::generic_category());
}

void check(bool succeeded) {
  if (!succeeded) fail();
}

void writeAll(int fd, std::string_view text) {
  while (!text.empty()) {
    const auto n = ::write(fd, text.data(), text.size());
    if (n < 0 && errno == EINTR) continue;
    check(n >= 0);
    text.remove_prefix(static_cast<std::size_t>(n));
  }
}

class OpenFile final : public Sink {
 public:
  explicit OpenFile(Fd fd) : fd_(std::move(fd)) {}

  void write(std::string_view text) override {
    std::cout.flush();
    writeAll(fd_.get(), text);
  }

 private:
  Fd fd_;
};

std::string folderOf(const std::string& file) {
  return file.substr(0, file.rfind('/') + 1);
}

/// A new file beside another one, which is removed unless it takes that one's place.
class Successor {
 public:
  /// For one that is there already nobody else may read along before it has its mode.
  Successor(const std::string& file, bool isThere) {
    constexpr mode_t forEverybody = 0666;
    constexpr mode_t forOwner = 0600;
    const std::string start = folderOf(file) + ".velk-" + std::to_string(getpid()) + "-";
    for (int number = 0; !fd_ && (number == 0 || errno == EEXIST); ++number) {
      name_ = start + std::to_string(number);
      fd_ = Fd(
          ::open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, isThere ? forOwner : forEverybody));
    }
    check(static_cast<bool>(fd_));
  }
  ~Successor() {
    if (!name_.empty()) unlink(name_.c_str());
  }
  Successor(const Successor&) = delete;
  Successor& operator=(const Successor&) = delete;

  [[nodiscard]] int get() const { return fd_.get(); }

  /// With owner and mode of the file before; another user's file cannot be given back to him by everybody.
  void resemble(const struct stat& before) const {
    [[maybe_unused]] const int mayFail = fchown(get(), before.st_uid, before.st_gid);
    check(fchmod(get(), before.st_mode & permissions) == 0);
  }

  void takePlaceOf(const std::string& file) {
    check(fsync(get()) == 0 || errno == EINVAL);  // EINVAL: no such thing in this file system
    check(std::rename(name_.c_str(), file.c_str()) == 0);
    name_.clear();
    const Fd folder(::open(folderOf(file).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder) fsync(folder.get());
  }

 private:
  std::string name_;
  Fd fd_;
};

Fd standardOutput() {
  Fd fd(dup(STDOUT_FILENO));
  check(static_cast<bool>(fd));
  if ((fcntl(fd.get(), F_GETFL) & O_ACCMODE) == O_RDONLY) {
    throw std::system_error(std::make_error_code(std::errc::bad_file_descriptor));
  }
  return fd;
}

std::string behindLinks(const std::string& path) {
  std::array<char, PATH_MAX> resolved;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by realpath
  check(realpath(path.c_str(), resolved.data()) != nullptr);
  return resolved.data();
}

}  // namespace

void holdStandardStreams() {
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    // Opened the wrong way round, so that using it is the error that it was; it gets the lowest number free.
    if (fcntl(fd, F_GETFD) < 0) {
      [[maybe_unused]] const int held = ::open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

std::string read(const std::string& path, std::size_t atMost) {
  const Fd file(path == standardStream ? dup(STDIN_FILENO) : ::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  check(static_cast<bool>(file));
  std::string text;
  std::array<char, 65536> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by read
  while (true) {
    const auto n = ::read(file.get(), buffer.data(), buffer.size());
    if (n == 0) return text;
    if (n < 0 && errno == EINTR) continue;
    check(n > 0);
    text.append(buffer.data(), static_cast<std::size_t>(n));
    if (text.size() > atMost) throw std::system_error(std::make_error_code(std::errc::file_too_large));
  }
}

Destination open(const std::string& path) {
  // A write past the limit of a file's size shall be refused with a reason, not end the program.
  std::signal(SIGXFSZ, SIG_IGN);
  if (path == standardStream) return {.file = {}, .sink = std::make_unique<OpenFile>(standardOutput())};
  Fd fd(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
  const bool isNew = !fd && errno == ENOENT;
  // Made for a moment: that tells whether it can be, and where a link leads that leads nowhere yet.
  if (isNew) fd = Fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666));
  check(static_cast<bool>(fd));
  struct stat status {};
  check(fstat(fd.get(), &status) == 0);
  if (!S_ISREG(status.st_mode)) return {.file = {}, .sink = std::make_unique<OpenFile>(std::move(fd))};
  std::string file = behindLinks(path);
  if (isNew) unlink(file.c_str());
  const Successor inItsFolder(file, true);
  return {.file = std::move(file), .sink = nullptr};
}

std::unique_ptr<Sink> create(const std::string& file) {
  Fd fd(::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  check(static_cast<bool>(fd));
  return std::make_unique<OpenFile>(std::move(fd));
}

void replace(const std::string& file, const std::string& like, std::string_view text) {
  struct stat model {};
  bool hasModel = false;
  for (const std::string& name : {file, like}) {
    hasModel = hasModel || stat(name.c_str(), &model) == 0;
    check(hasModel || errno == ENOENT);
  }
  Successor successor(file, hasModel);
  if (hasModel) successor.resemble(model);
  writeAll(successor.get(), text);
  successor.takePlaceOf(file);
}

bool rename(const std::string& from, const std::string& to) {
  struct stat status {};
  if (lstat(to.c_str(), &status) == 0) return false;
  check(std::rename(from.c_str(), to.c_str()) == 0);
  return true;
}

void remove(const std::string& file) noexcept {
  unlink(file.c_str());
}

}  // namespace velk::cli::system
