#include "platform/posix/port.h"

#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>

#include <array>
#include <cerrno>

#include "platform/devices.h"
#include "platform/posix/backlog.h"
#include "platform/posix/poll.h"
#include "values/runtime_error.h"

namespace velk::platform {
namespace {

/// How long a port may refuse to take anything.
constexpr std::chrono::seconds writePatience(1);

std::string devicePath(int number) {
  const auto mapped = mappedPort(number);
  return mapped ? *mapped : "/dev/ttyS" + std::to_string(number - 1);
}

Fd openDevice(const std::string& path) {
  Fd fd(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  if (!fd)
    throw RuntimeError(errno == EBUSY ? RuntimeError::portAlreadyOpen : RuntimeError::invalidPortNumber);
  // The lock keeps other programs out that look for it; the exclusive mode keeps out the rest, but for root.
  if (flock(fd.get(), LOCK_EX | LOCK_NB) != 0) throw RuntimeError(RuntimeError::portAlreadyOpen);
  ioctl(fd.get(), TIOCEXCL);
  return fd;
}

tcflag_t parityFlags(char parity) {
  switch (parity) {
    case 'E':
      return PARENB;
    case 'O':
      return PARENB | PARODD;
    case 'M':
      return PARENB | PARODD | CMSPAR;
    case 'S':
      return PARENB | CMSPAR;
    default:
      return 0;
  }
}

void configure(int fd, const SerialSettings& settings) {
  constexpr auto sizes = std::to_array<tcflag_t>({CS5, CS6, CS7, CS8});
  termios2 t{};
  t.c_cflag = sizes.at(static_cast<std::size_t>(settings.dataBits) - 5) | parityFlags(settings.parity) |
              (settings.stopBits > 1 ? CSTOPB : 0U) | CREAD | CLOCAL | BOTHER;
  t.c_iflag = settings.parity == 'N' ? 0U : INPCK;
  t.c_cc[VMIN] = 1;  // so that an empty line reads as EAGAIN and a vanished one as 0 bytes
  t.c_ispeed = t.c_ospeed = static_cast<speed_t>(settings.baud);
  if (ioctl(fd, TCSETS2, &t) != 0) {
    throw RuntimeError(errno == EIO ? RuntimeError::invalidPortNumber : RuntimeError::invalidPropertyValue);
  }
  const int rts = TIOCM_RTS | TIOCM_DTR;
  ioctl(fd, TIOCMBIS, &rts);  // pseudo terminals have no such lines
}

/// Whether the device is still there: it knows its settings.
bool answers(int fd) {
  termios2 settings{};
  return ioctl(fd, TCGETS2, &settings) == 0;
}

}  // namespace

PosixSerialPort::~PosixSerialPort() {
  if (!fd_) return;
  lowLatency_.end();
  deviceClosed();
}

void PosixSerialPort::open(int number, const SerialSettings& settings) {
  if (fd_) throw RuntimeError(RuntimeError::portAlreadyOpen);
  if (number < 1) throw RuntimeError(RuntimeError::invalidPortNumber);
  Fd fd = openDevice(devicePath(number));
  configure(fd.get(), settings);
  fd_ = std::move(fd);
  lowLatency_.begin(fd_.get());
  deviceOpened();
}

void PosixSerialPort::close() {
  if (!fd_) throw RuntimeError(RuntimeError::deviceNotOpen);
  lowLatency_.end();
  fd_.reset();
  deviceClosed();
}

std::string_view PosixSerialPort::read() {
  requireOpen();
  const ssize_t taken =
      takeAll(buffer_, [this](char* place, std::size_t size) { return ::read(fd_.get(), place, size); });
  if (taken > 0) return {buffer_.data(), static_cast<std::size_t>(taken)};
  // A device that has been pulled out reads as ended or as an error; a live one as EAGAIN.
  if (taken == 0 || (errno != EAGAIN && errno != EINTR)) throw RuntimeError(RuntimeError::deviceFailed);
  return {};
}

void PosixSerialPort::write(std::string_view bytes) {
  requireOpen();
  while (!bytes.empty()) {
    const auto n = ::write(fd_.get(), bytes.data(), bytes.size());
    if (n > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(n));
      continue;
    }
    if (n < 0 && errno != EAGAIN && errno != EINTR) throw RuntimeError(RuntimeError::deviceFailed);
    if (poll(fd_.get(), POLLOUT, writePatience) == 0) throw RuntimeError(RuntimeError::deviceBusy);
  }
}

void PosixSerialPort::setBreak(bool on) {
  requireOpen();
  // The codes for a driver that knows no break are many, and some of them a device that is gone gives, too.
  if (ioctl(fd_.get(), on ? TIOCSBRK : TIOCCBRK) != 0 && !answers(fd_.get())) {
    throw RuntimeError(RuntimeError::deviceFailed);
  }
}

void PosixSerialPort::requireOpen() const {
  if (!fd_) throw RuntimeError(RuntimeError::portNotOpen);
}

}  // namespace velk::platform
