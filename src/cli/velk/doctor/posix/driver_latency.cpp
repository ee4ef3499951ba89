#include "cli/velk/doctor/posix/driver_latency.h"

#include <fcntl.h>
#include <linux/serial.h>
#include <linux/tty_flags.h>
#include <sys/ioctl.h>

#include <fstream>

namespace velk::cli {
namespace {

/// None where the driver has no such flag.
std::optional<bool> flagOf(const platform::Fd& device) {
  serial_struct state{};
  if (!device || ioctl(device.get(), TIOCGSERIAL, &state) != 0) return std::nullopt;
  return (state.flags & static_cast<int>(ASYNC_LOW_LATENCY)) != 0;
}

std::filesystem::path timerOf(const std::filesystem::path& root, const std::string& device) {
  std::error_code error;
  const std::filesystem::path real = std::filesystem::canonical(device, error);
  return root / "sys/class/tty" / real.filename() / "device/latency_timer";
}

std::optional<int> numberIn(const std::filesystem::path& file) {
  int number = 0;
  return std::ifstream(file) >> number ? std::optional(number) : std::nullopt;
}

}  // namespace

DriverLatency::DriverLatency(const std::string& device, const std::filesystem::path& root)
    : device_(::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)),
      before_(flagOf(device_)),
      timer_(timerOf(root, device)) {}

Step DriverLatency::whileOpen() const {
  const std::optional<bool> now = flagOf(device_);
  const std::optional<int> timer = numberIn(timer_);
  const std::string milliseconds = timer ? ", its timer is " + std::to_string(*timer) + " ms" : "";
  if (now.value_or(false)) {
    return {"latency", Verdict::fine,
            (before_.value_or(false) ? "the driver's low-latency flag was set before"
                                     : "velk has set the driver's low-latency flag, for as long as it runs") +
                milliseconds,
            ""};
  }
  const std::string found = now ? "the driver does not take the low-latency flag" + milliseconds
                                : "the driver has no low-latency flag" + milliseconds;
  if (timer && *timer > 1) {
    return {"latency", Verdict::advice, found, "set it with \"echo 1 | sudo tee " + timer_.string() + "\""};
  }
  return {"latency", timer ? Verdict::fine : Verdict::unknown, found, ""};
}

std::unique_ptr<AdapterLatency> watchLatency(const std::string& device) {
  return std::make_unique<DriverLatency>(device, "/");
}

}  // namespace velk::cli
