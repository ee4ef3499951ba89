#include "cli/velk/doctor/posix/driver_latency.h"

#include <asm/ioctls.h>
#include <gtest/gtest.h>
#include <linux/serial.h>

#include <cerrno>

#include "cli/tool.h"
#include "support/system_calls.h"

namespace velk::cli {
namespace {

constexpr int lowLatency = 1 << 13;
constexpr int otherFlag = 1 << 4;

using Flags = std::optional<int>;  // none: the driver has none

struct Row {
  Flags before;
  Flags now;
  std::string timer;  ///< in the driver's file; empty: there is no file
  Verdict verdict;
  std::string text;
  bool remedied;
};

const Row rows[] = {
    {otherFlag, lowLatency, "1", Verdict::fine,
     "velk has set the driver's low-latency flag, for as long as it runs, its timer is 1 ms", false},
    {lowLatency, lowLatency | otherFlag, "", Verdict::fine, "the driver's low-latency flag was set before",
     false},
    {0, 0, "16", Verdict::advice, "the driver does not take the low-latency flag, its timer is 16 ms", true},
    {0, 0, "", Verdict::unknown, "the driver does not take the low-latency flag", false},
    {{}, {}, "2", Verdict::advice, "the driver has no low-latency flag, its timer is 2 ms", true},
    {{}, {}, "1", Verdict::fine, "the driver has no low-latency flag, its timer is 1 ms", false},
    {{}, {}, "", Verdict::unknown, "the driver has no low-latency flag", false},
};

TEST(DriverLatency, ByTheFlagAndTheTimer) {
  for (const Row& row : rows) {
    const Folder folder;
    const std::string device = folder.put("ttyUSB0", "");
    const std::string port = folder / "sys/class/tty/ttyUSB0/device";
    std::filesystem::create_directories(port);
    if (!row.timer.empty()) std::ofstream(port + "/latency_timer") << row.timer << "\n";
    Flags flags = row.before;
    const test::Watch watch([&](const test::Call& call) -> test::Answer {
      if (call.number != SYS_ioctl || call.arguments[1] != TIOCGSERIAL) return {};
      if (!flags) return -ENOTTY;
      call.at<serial_struct>(2).flags = *flags;
      return 0;
    });
    const DriverLatency latency(device, folder.path);
    flags = row.now;
    const Step step = latency.whileOpen();
    EXPECT_EQ(step.text, row.text);
    EXPECT_EQ(step.verdict, row.verdict) << row.text;
    EXPECT_EQ(step.remedy,
              row.remedied ? "set it with \"echo 1 | sudo tee " + port + "/latency_timer\"" : "");
  }
}

}  // namespace
}  // namespace velk::cli
