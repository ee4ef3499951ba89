#include "cli/velk/connection/port_failure.h"

#include <fcntl.h>
#include <sys/file.h>
#include <termios.h>

#include <cerrno>
#include <system_error>

#include "cli/velk/connection/posix/device_access.h"
#include "platform/posix/fd.h"

namespace velk::cli {
namespace {

std::string whyBusy(const std::string& device) {
  const std::string who = holdersOf(device);
  if (who.empty()) return "another program has it open; \"sudo fuser -v " + device + "\" names it";
  return "it is open in " + who;
}

std::string whyRefused(const std::string& device, int error) {
  switch (error) {
    case EACCES:
    case EPERM:
      return whyForbidden(device);
    case EBUSY:
      return whyBusy(device);
    case ENOENT:
    case ENOTDIR:
      return "there is no such device; \"velk ports\" lists those that there are";
    case ENXIO:
    case ENODEV:
    case EIO:
      return "no hardware is behind it; is the adapter plugged in?";
    default:
      return std::generic_category().message(error);
  }
}

}  // namespace

std::string whyNoPort(const std::string& device, int baud) {
  const platform::Fd fd(::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  if (!fd) return whyRefused(device, errno);
  if (flock(fd.get(), LOCK_EX | LOCK_NB) != 0) return whyBusy(device);
  termios settings{};
  if (tcgetattr(fd.get(), &settings) == 0) {
    return "it does not take " + std::to_string(baud) + " bit/s, 8 bits of data, no parity";
  }
  return errno == EIO ? whyRefused(device, EIO) : "it is no serial port; \"velk ports\" lists them";
}

}  // namespace velk::cli
