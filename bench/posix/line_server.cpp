#include <pty.h>
#include <termios.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>

#include "frames.h"
#include "posix/servers.h"

namespace velk::bench {
namespace {

/// Start bit, eight data bits and stop bit at 9600 bit/s.
constexpr long byteTime = 10'000'000'000 / 9600;  // ns
constexpr long second = 1'000'000'000;

/// The far end of a pseudo terminal that lets bytes pass at the pace of a line.
class Line {
 public:
  Line(int fd, Pace pace) : fd_(fd), paced_(pace == Pace::baud9600) { prctl(PR_SET_TIMERSLACK, 1); }

  /// What has come in, once the line has had the time to carry it.
  std::string_view receive() {
    const auto n = ::read(fd_, buffer_.data(), buffer_.size());
    if (n <= 0) _exit(0);
    if (paced_) {
      arrived_ = std::max(arrived_, now());
      for (auto i = n; i > 0; --i) passByte(arrived_);
    }
    return {buffer_.data(), static_cast<std::size_t>(n)};
  }

  void send(std::string_view bytes) {
    if (!paced_) return put(bytes);
    left_ = std::max(left_, arrived_);
    for (const char& byte : bytes) {
      passByte(left_);
      put({&byte, 1});
    }
  }

 private:
  static long now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * second + time.tv_nsec;
  }

  /// Waits until a byte more has passed; `free` is when the line could take it.
  static void passByte(long& free) {
    free += byteTime;
    const timespec end{.tv_sec = free / second, .tv_nsec = free % second};
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
    }
  }

  void put(std::string_view bytes) const {
    [[maybe_unused]] const auto n = ::write(fd_, bytes.data(), bytes.size());
  }

  int fd_;
  bool paced_;
  long arrived_ = 0;  ///< when the last byte had come in
  long left_ = 0;     ///< when the last byte had gone out
  std::array<char, 512> buffer_{};
};

[[noreturn]] void serveFast(Line line) {
  const std::string reply = fastExchange.reply();
  std::string request;
  for (;;) {
    request += line.receive();
    if (request.size() < fastExchange.request.size()) continue;
    if (request[fastExchange.pageAt] != silentPage) line.send(reply);
    request.clear();
  }
}

[[noreturn]] void serveEcho(Line line) {
  const std::string reply = echoExchange.reply();
  std::string request;
  for (;;) {
    const std::string bytes(line.receive());
    request += bytes;
    const bool complete = request.size() >= echoExchange.request.size();
    line.send(complete ? bytes + reply : bytes);
    if (complete) request.clear();
  }
}

template <class Serve>
LineServer startLine(Pace pace, Serve serve) {
  int nearEnd = -1;
  int farEnd = -1;
  termios raw{};
  cfmakeraw(&raw);
  std::array<char, 128> name{};
  if (openpty(&farEnd, &nearEnd, name.data(), &raw, nullptr) != 0) {
    throw std::runtime_error("no pseudo terminal");
  }
  // The child keeps both ends, so that the line is not hung up between two clients.
  LineServer server{.device = name.data(), .process = Child([=] { serve(Line(farEnd, pace)); })};
  close(nearEnd);
  close(farEnd);
  return server;
}

}  // namespace

LineServer startFastServer(Pace pace) {
  return startLine(pace, serveFast);
}

LineServer startEchoServer(Pace pace) {
  return startLine(pace, serveEcho);
}

}  // namespace velk::bench
