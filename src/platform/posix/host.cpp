#include "platform/host.h"

#include <ctime>

#include "platform/posix/poll.h"
#include "platform/posix/port.h"
#include "platform/posix/socket.h"

namespace velk::platform {
namespace {

using std::chrono::nanoseconds;

timespec timeOf(clockid_t clock) {
  timespec now;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the call, which cannot fail
  clock_gettime(clock, &now);
  return now;
}

/// Local time of day. What the time zone adds to UTC only ever changes at a quarter of an hour, so it is
/// asked for once in each.
class TimeOfDay {
 public:
  float seconds() {
    const timespec now = timeOf(CLOCK_REALTIME);
    if (now.tv_sec / quarter != quarter_) refresh(now.tv_sec);
    return static_cast<float>(static_cast<double>(now.tv_sec - midnight_) +
                              static_cast<double>(now.tv_nsec) * 1e-9);
  }

 private:
  static constexpr time_t quarter = 900;

  void refresh(time_t now) {
    tm local{};
    localtime_r(&now, &local);
    constexpr time_t day = 86400;
    midnight_ = now - (now + local.tm_gmtoff) % day;
    quarter_ = now / quarter;
  }

  time_t quarter_{};  ///< which one since 1970 `midnight_` is for
  time_t midnight_{};
};

class PosixHost final : public Host {
 public:
  float clock() override { return timeOfDay_.seconds(); }

  nanoseconds steady() override {
    const timespec now = timeOf(CLOCK_MONOTONIC);
    return std::chrono::seconds(now.tv_sec) + nanoseconds(now.tv_nsec);
  }

  /// There is no message loop here.
  void yield() override {}

  void block(Source source, nanoseconds longest, Messages /*messages*/) override {
    if (source == Source::socket) return socket_.wait(longest);
    poll(source == Source::port ? port_.descriptor() : Fd::none, POLLIN, longest);
  }

  SerialPort& port() override { return port_; }
  Socket& socket() override { return socket_; }

 private:
  TimeOfDay timeOfDay_;
  PosixSerialPort port_;
  PosixSocket socket_;
};

}  // namespace

Host& threadHost() {
  thread_local PosixHost host;
  return host;
}

}  // namespace velk::platform
