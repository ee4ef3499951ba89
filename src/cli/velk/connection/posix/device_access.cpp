#include "cli/velk/connection/posix/device_access.h"

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "values/digits.h"

namespace velk::cli {
namespace {

namespace fs = std::filesystem;

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

}  // namespace

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

std::string holdersOf(const std::string& device) {
  constexpr int most = 3;
  struct stat state {};
  std::string names;
  if (stat(device.c_str(), &state) != 0) return names;
  std::error_code error;
  int count = 0;
  for (fs::directory_iterator process("/proc", error), end; !error && process != end;
       process.increment(error)) {
    const auto number = wholeNumber<int>(process->path().filename().string());
    if (!number || *number == getpid() || !holds(process->path(), state.st_rdev)) continue;
    if (++count > most) return names + " and more";
    names += (names.empty() ? "" : ", ") + programIn(process->path());
  }
  return names;
}

}  // namespace velk::cli
