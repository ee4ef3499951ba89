#include "cli/shared/serial_line.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <mutex>
#include <stdexcept>

#include "platform/host.h"
#include "platform/posix/fd.h"

namespace velk::cli {
namespace {

/// The near end of a pseudo terminal. Its far end is kept open as well, so that programs may open and close
/// it without the line being hung up.
class PtyStream final : public Stream {
 public:
  PtyStream(platform::Fd nearEnd, platform::Fd farEnd, const char* name)
      : near_(std::move(nearEnd)), far_(std::move(farEnd)) {
    inotify_add_watch(closings_.get(), name, IN_CLOSE);
  }

  std::optional<Bytes> receive(std::chrono::milliseconds longest) override {
    // Programs open the line for themselves alone; since it is never closed for good, that would last.
    ioctl(far_.get(), TIOCNXCL);
    std::array<pollfd, 3> watched{
        {{near_.get(), POLLIN, 0}, {closings_.get(), POLLIN, 0}, {wake_.get(), POLLIN, 0}}};
    if (poll(watched.data(), watched.size(), static_cast<int>(longest.count())) <= 0) return Bytes();
    std::array<char, 4096> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by read
    if (watched[1].revents != 0) {
      [[maybe_unused]] const auto told = ::read(closings_.get(), buffer.data(), buffer.size());
    }
    if (watched[0].revents == 0) return Bytes();
    const auto n = ::read(near_.get(), buffer.data(), buffer.size());
    if (n <= 0) return std::nullopt;
    return Bytes(buffer.data(), static_cast<std::size_t>(n));
  }

  void send(std::string_view bytes) override {
    // Does not block: a line loses what nobody takes.
    [[maybe_unused]] const auto n = ::write(near_.get(), bytes.data(), bytes.size());
  }

  void wake() override { eventfd_write(wake_.get(), 1); }

 private:
  platform::Fd near_;
  platform::Fd far_;
  platform::Fd closings_{inotify_init1(IN_CLOEXEC)};  ///< tells when a program closes the far end
  platform::Fd wake_{eventfd(0, EFD_CLOEXEC)};
};

}  // namespace

Byte portNumber(const std::string& device) {
  static std::mutex mutex;
  static Byte last = 0;
  const std::lock_guard lock(mutex);
  platform::mapPort(++last, device);
  return last;
}

NamedLine openPseudoLine() {
  int nearEnd = -1;
  int farEnd = -1;
  termios raw{};
  cfmakeraw(&raw);
  std::array<char, 128> name{};
  if (openpty(&nearEnd, &farEnd, name.data(), &raw, nullptr) != 0) {
    throw std::runtime_error("no pseudo terminal can be opened");
  }
  fcntl(nearEnd, F_SETFL, O_NONBLOCK);
  return {.name = name.data(),
          .stream = std::make_unique<PtyStream>(platform::Fd(nearEnd), platform::Fd(farEnd), name.data())};
}

}  // namespace velk::cli
