#include "platform/host.h"

#include <poll.h>

#include <ctime>

#include "platform/posix/port.h"
#include "platform/posix/socket.h"

namespace velk::platform {
namespace {

using std::chrono::nanoseconds;

/// Local time of day. What the time zone adds to UTC only ever changes at a quarter of an hour, so it is
/// asked for once in each.
class TimeOfDay {
 public:
  float seconds() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (now.tv_sec < from_ || now.tv_sec >= from_ + quarter) refresh(now.tv_sec);
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
    from_ = now - now % quarter;
  }

  time_t from_ = 0;
  time_t midnight_ = 0;
};

class PosixHost final : public Host {
 public:
  float clock() override { return timeOfDay_.seconds(); }

  nanoseconds steady() override { return std::chrono::steady_clock::now().time_since_epoch(); }

  /// There is no message loop here.
  void yield() override {}

  void block(Source source, nanoseconds longest, Messages /*messages*/) override {
    pollfd watched = interest(source);
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(longest);
    const timespec limit{.tv_sec = seconds.count(), .tv_nsec = (longest - seconds).count()};
    const bool news = ppoll(&watched, watched.fd < 0 ? 0 : 1, &limit, nullptr) > 0;
    if (news && source == Source::socket) socket_.advance(watched.revents);
  }

  SerialPort& port() override { return port_; }
  Socket& socket() override { return socket_; }

 private:
  [[nodiscard]] pollfd interest(Source source) const {
    if (source == Source::socket) return socket_.interest();
    const int fd = source == Source::port ? port_.descriptor() : -1;
    return {.fd = fd, .events = POLLIN, .revents = 0};
  }

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
