#include "cli/velk/connection/port_failure.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <termios.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <vector>

#include "platform/posix/fd.h"
#include "values/digits.h"

namespace velk::cli {
namespace {

namespace fs = std::filesystem;

/// Who may open the device; the group is what a user can join.
std::string whyForbidden(const std::string& device) {
  struct stat state {};
  if (stat(device.c_str(), &state) != 0) return "no permission for its folder";
  constexpr mode_t both = S_IRGRP | S_IWGRP;
  const group* const owner = getgrgid(state.st_gid);  // NOLINT(concurrency-mt-unsafe): no other thread asks
  if ((state.st_mode & both) != both || owner == nullptr || state.st_gid == 0) {
    return "no permission; only its owner and root may open it";
  }
  const std::string name = owner->gr_name;
  return "no permission; join its group with \"sudo adduser $USER " + name + "\" and log in again";
}

/// Whether a process, as a folder in /proc, has the device open, as far as this user may know.
bool holds(const fs::path& process, dev_t device) {
  std::error_code error;
  for (fs::directory_iterator open(process / "fd", error), end; !error && open != end;
       open.increment(error)) {
    struct stat state {};
    if (stat(open->path().c_str(), &state) == 0 && S_ISCHR(state.st_mode) && state.st_rdev == device) {
      return true;
    }
  }
  return false;
}

std::string programIn(const fs::path& process) {
  std::string name;
  std::getline(std::ifstream(process / "comm"), name);
  return name + " (process " + process.filename().string() + ")";
}

std::vector<std::string> holdersOf(const std::string& device) {
  struct stat state {};
  std::vector<std::string> names;
  if (stat(device.c_str(), &state) != 0) return names;
  std::error_code error;
  for (fs::directory_iterator process("/proc", error), end; !error && process != end;
       process.increment(error)) {
    const auto number = wholeNumber<int>(process->path().filename().string());
    if (!number || *number == getpid()) continue;
    if (holds(process->path(), state.st_rdev)) names.push_back(programIn(process->path()));
  }
  return names;
}

std::string whyBusy(const std::string& device) {
  std::string who;
  for (const std::string& name : holdersOf(device)) who += (who.empty() ? "" : ", ") + name;
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
