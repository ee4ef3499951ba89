#include <fcntl.h>
#include <linux/serial.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>

#include <cerrno>
#include <set>

#include "component/serial.h"
#include "support/bytes.h"
#include "support/real_peers.h"
#include "support/system_calls.h"

namespace velk::platform {
namespace {

using namespace std::chrono_literals;
using namespace test;

/// The clocks of the system, set.
auto clocksAt(time_t seconds, long nanoseconds) {
  return [=](const Call& call) -> Answer {
    if (call.number != SYS_clock_gettime) return {};
    call.at<timespec>(1) = {.tv_sec = seconds, .tv_nsec = nanoseconds};
    return 0;
  };
}

void setZone(const char* zone) {
  zone != nullptr ? setenv("TZ", zone, 1) : unsetenv("TZ");
  tzset();
}

/// Midnights east and west of Greenwich and at a quarter to, the hour that summer leaves out, and a clock set
/// back.
TEST(PosixHost, ClockIsLocalTimeOfDayAndTheOtherCountsNanoseconds) {
  const char* summer = "CET-1CEST,M3.5.0,M10.5.0/3";
  const struct {
    const char* zone;
    time_t utc;
    long nanoseconds;
    float clock;
  } rows[] = {{"UTC0", 1774742399, 990'000'000, 86399.99F},
              {"UTC0", 1774742400, 0, 0},
              {"UTC0", 1774742401, 500'000'000, 1.5F},
              {"NPT-5:45", 1774721699, 0, 86399},
              {"NPT-5:45", 1774721700, 0, 0},
              {"EST5", 1774760399, 0, 86399},
              {"EST5", 1774760400, 250'000'000, 0.25F},
              {summer, 1774745999, 0, 7199},
              {summer, 1774746000, 0, 10800},
              {summer, 1774821600, 0, 0},
              {summer, 1774821599, 0, 86399}};
  const char* const before = getenv("TZ");
  const std::string noon = before != nullptr ? before : "";
  for (const auto& row : rows) {
    setZone(row.zone);
    const Watch watch(clocksAt(row.utc, row.nanoseconds));
    EXPECT_EQ(threadHost().clock(), row.clock) << row.zone << ", " << row.utc;
  }
  setZone(before != nullptr ? noon.c_str() : nullptr);
  const Watch watch(clocksAt(5, 250'000'001));
  EXPECT_EQ(threadHost().steady(), 5'250'000'001ns);
}

TEST(Fd, ClosesWhatItOwnsOnce) {
  const auto isOpen = [](int fd) { return fcntl(fd, F_GETFD) != -1; };
  const int number = dup(STDIN_FILENO);
  Fd a(number);
  Fd b(std::move(a));
  EXPECT_EQ(std::pair(a.get(), b.get()), std::pair(-1, number));
  a = std::move(b);
  EXPECT_TRUE(a && !b && isOpen(number));
  a.reset();
  EXPECT_EQ(a.get(), -1);
  EXPECT_FALSE(a || isOpen(number));
  { const Fd again(dup(STDIN_FILENO)); }
  EXPECT_FALSE(isOpen(number));
}

/// What a port is set to. The header that has it and that of pseudo terminals exclude each other.
struct LineSettings {
  std::uint32_t input, output, control, local;
  std::array<std::uint8_t, 20> characters;  ///< behind the line discipline
  std::uint32_t inputSpeed, outputSpeed;
};

constexpr unsigned long askSettings = _IOR('T', 0x2A, LineSettings);
constexpr unsigned long setSettings = _IOW('T', 0x2B, LineSettings);

/// Answers some requests to a device with an error.
auto refuse(std::set<unsigned long> requests, int error) {
  return [=](const Call& call) -> Answer {
    if (call.number != SYS_ioctl || !requests.contains(static_cast<unsigned long>(call.arguments[1])))
      return {};
    return -error;
  };
}

class PosixPort : public testing::Test {
 protected:
  void TearDown() override {
    if (port.isOpen()) port.close();
  }

  Pty pty;
  Host& host = threadHost();
  SerialPort& port = host.port();
};

TEST_F(PosixPort, CarriesAllByteValuesBothWaysAndAnyLengthInOneRead) {
  port.open(Pty::number, {});
  Bytes all;
  for (int i = 0; i < 256; ++i) all += character(i);
  port.write(all);
  Bytes received(all.size(), '\0');
  ASSERT_EQ(::read(pty.far(), received.data(), received.size()), 256);
  EXPECT_EQ(received, all);
  for (const Bytes& sent : {all, Bytes(6000, 'n')}) {
    ASSERT_EQ(::write(pty.far(), sent.data(), sent.size()), static_cast<ssize_t>(sent.size()));
    host.block(Source::port, std::chrono::minutes(1), Messages::held);
    EXPECT_EQ(port.read(), sent);
    EXPECT_EQ(port.read(), "");
  }
}

/// No handshake, no line editing, RTS and DTR on; a read is answered as soon as a byte is there.
TEST_F(PosixPort, HandsItsSettingsToTheDevice) {
  constexpr tcflag_t rateAsNumber = 0x1000;
  const struct {
    const char* text;
    tcflag_t control, input;
    speed_t speed;
  } rows[] = {{" 9600,N,8,1", CS8, 0, 9600},
              {"300,N,5,1", CS5, 0, 300},
              {"1200,E,6,1.5", CS6 | PARENB | CSTOPB, INPCK, 1200},
              {"19200,O,7,2", CS7 | PARENB | PARODD | CSTOPB, INPCK, 19200},
              {"4000000,M,8,1", CS8 | PARENB | PARODD | CMSPAR, INPCK, 4000000},
              {"1,S,8,1", CS8 | PARENB | CMSPAR, INPCK, 1}};
  for (const auto& row : rows) {
    LineSettings set{};
    std::set<unsigned long> requests;
    int lines = 0;
    const Watch watch([&](const Call& call) -> Answer {
      if (call.number != SYS_ioctl) return {};
      const auto request = static_cast<unsigned long>(call.arguments[1]);
      requests.insert(request);
      if (request == setSettings) set = call.at<LineSettings>(2);
      if (request == TIOCMBIS) lines = call.at<int>(2);
      return {};
    });
    EXPECT_EQ(errorOf([&] { port.open(Pty::number, parseSettings(row.text)); }), 0) << row.text;
    port.close();
    EXPECT_TRUE(requests.contains(TIOCEXCL)) << "no other program may open it";
    EXPECT_EQ(lines, TIOCM_RTS | TIOCM_DTR);
    EXPECT_EQ(set.control, row.control | rateAsNumber | CREAD | CLOCAL) << row.text;
    EXPECT_EQ(set.input, row.input) << "parity is checked where there is one: " << row.text;
    EXPECT_EQ(set.output | set.local, 0U) << "nothing is translated or echoed";
    EXPECT_EQ(std::pair(set.inputSpeed, set.outputSpeed), std::pair(row.speed, row.speed)) << row.text;
    std::array<std::uint8_t, 20> characters{};
    characters[1 + VMIN] = 1;
    EXPECT_EQ(set.characters, characters);
  }
  for (const char* text :
       {"", "0,N,8,1", "-1,N,8,1", "4000001,N,8,1", "9600,X,8,1", "9600,NE,8,1", "9600,,8,1", "9600,N,4,1",
        "9600,N,9,1", "9600,N,8,0.9", "9600,N,8,2.1", "9600,N,8", "9600,N,8,1,1"}) {
    EXPECT_EQ(errorOf([&] { parseSettings(text); }), 380) << text;
  }
}

/// A driver whose flag was set stays as it is; one that has none, or refuses, is left alone. Settings that
/// somebody else has changed meanwhile stay.
TEST_F(PosixPort, SetsTheLowLatencyFlagAndTakesItBack) {
  constexpr int flag = 1 << 13;
  const struct {
    const char* what;
    int before, during, after;
    long asked, set;
  } rows[] = {{"clear", 0x10, 0x10 | flag, 0x30, 0, 0},
              {"set", 0x10 | flag, 0x10 | flag, 0x30 | flag, 0, 0},
              {"none", 0, 0, 0x20, -ENOTTY, 0},
              {"refused", 0, 0, 0x20, 0, -EPERM}};
  for (const auto& row : rows) {
    int flags = row.before;
    const Watch watch([&](const Call& call) -> Answer {
      if (call.number != SYS_ioctl) return {};
      const auto request = static_cast<unsigned long>(call.arguments[1]);
      if (request == TIOCGSERIAL) call.at<serial_struct>(2).flags = flags;
      if (request == TIOCGSERIAL) return row.asked;
      if (request != TIOCSSERIAL) return {};
      if (row.set == 0) flags = call.at<serial_struct>(2).flags;
      return row.set;
    });
    port.open(Pty::number, {});
    EXPECT_EQ(flags, row.during) << row.what;
    flags |= 0x20;
    port.close();
    EXPECT_EQ(flags, row.after) << row.what;
  }
}

TEST_F(PosixPort, ErrorsByNumber) {
  EXPECT_EQ(errorOf([&] { port.close(); }), 8012);
  EXPECT_EQ(errorOf([&] { port.read(); }), 8018);
  EXPECT_EQ(errorOf([&] { port.write("x"); }), 8018);
  EXPECT_EQ(errorOf([&] { port.setBreak(true); }), 8018);
  mapPort(0, "/dev/null");
  const struct {
    int number, systemError, error;
    const char* path;  ///< of the device that is opened
  } rows[] = {{0, ENOENT, 8002, ""}, {1, ENOENT, 8002, "/dev/ttyS0"}, {255, EBUSY, 8005, "/dev/ttyS254"}};
  for (const auto& row : rows) {
    std::string path;
    const Watch watch([&](const Call& call) -> Answer {
      if (call.number != SYS_openat) return {};
      path = &call.at<const char>(1);
      return -row.systemError;
    });
    EXPECT_EQ(errorOf([&] { port.open(row.number, {}); }), row.error) << row.number;
    EXPECT_EQ(path, row.path);
  }
  mapPort(0, "");
  for (const auto& [refusal, error] : {std::pair(EIO, 8002), std::pair(EINVAL, 380)}) {
    const Watch watch(refuse({setSettings}, refusal));
    EXPECT_EQ(errorOf([&] { port.open(Pty::number, {}); }), error)
        << "a port in name only, or a rate it has not";
  }
  const int before = openDevices();
  port.open(Pty::number, {});
  EXPECT_EQ(openDevices(), before + 1);
  EXPECT_EQ(errorOf([&] { port.open(Pty::number, {}); }), 8005);
  int other = 0;
  std::thread([&] { other = errorOf([] { threadHost().port().open(Pty::number, {}); }); }).join();
  EXPECT_EQ(other, 8005) << "another thread has its own port, but not the same device";
  port.close();
  EXPECT_EQ(openDevices(), before);
  std::thread([] { threadHost().port().open(Pty::number, {}); }).join();
  EXPECT_EQ(openDevices(), before) << "a thread that ends closes its port";
}

/// What is read is taken whole, and a reply costs one call. (Where the system keeps what comes in a ring, the
/// end of the ring cuts a piece in two.)
TEST_F(PosixPort, TellsABusyDeviceFromOneThatHasGone) {
  using Answers = std::vector<long>;
  Answers almost(99, 4096);
  almost[15] = 4095;
  const struct {
    const char* what;
    Answers answers;  ///< of the device: bytes that it takes or gives, or an error
    std::size_t calls;
    int error;
    long ready = 0;  ///< whether it is, within a second
  } rows[] = {{"write in two pieces", {1, 2}, 2, 0},
              {"write that has to wait", {-EAGAIN, 3}, 2, 0, 1},
              {"write cut short by a signal", {-EINTR, 3}, 2, 0, -EINTR},
              {"write that nobody takes", {1, -EAGAIN}, 2, 8019},
              {"write of nothing", {0}, 1, 8019},
              {"write to a device that has gone", {-EIO}, 1, 8020, 1},
              {"read of nothing", {-EAGAIN}, 1, 0},
              {"read cut short by a signal", {-EINTR}, 1, 0},
              {"read at the end", {0}, 1, 8020},
              {"read from a device that has gone", {-EIO}, 1, 8020},
              {"read of the longest reply", {1023}, 1, 0},
              {"read of what may be more", {1024, 7, -EAGAIN}, 3, 0},
              {"read over the end of the ring", {4095, 1, 1904, -EAGAIN}, 4, 0},
              {"read of the last bytes", {4096, 0}, 2, 0},
              {"read of a flood", Answers(99, 4096), 16, 0},
              {"read of a flood, a byte less", almost, 17, 0}};
  port.open(Pty::number, {});
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    std::size_t calls = 0;
    Bytes expected = row.what[0] == 'w' ? "abc" : "";
    const auto device = [&](const Call& call) -> Answer {
      if (call.number == SYS_ppoll) {
        EXPECT_EQ(call.at<pollfd>(0).events, POLLOUT);
        EXPECT_EQ(call.at<timespec>(2).tv_sec, 1);
        return row.ready;
      }
      const long answer = row.answers.at(calls++);
      const auto size = static_cast<std::size_t>(std::max(answer, 0L));
      if (call.number == SYS_write) {
        EXPECT_EQ(std::string_view(&call.at<char>(1), static_cast<std::size_t>(call.arguments[2])), expected);
        expected.erase(0, size);
      } else {
        EXPECT_EQ(call.arguments[2], 4096);
        expected += Bytes(size, static_cast<char>('a' + calls));
        std::fill_n(&call.at<char>(1), size, expected.back());
      }
      errno = EIO;  // of an earlier call; what succeeds does not clear it
      return answer;
    };
    Bytes received;
    const int error = errorOf([&] {
      const Watch watch(device);
      row.what[0] == 'w' ? port.write("abc") : void(received = port.read());
    });
    EXPECT_EQ(std::pair(error, calls), std::pair(row.error, row.calls));
    EXPECT_TRUE(error != 0 || received == expected);
  }
}

TEST_F(PosixPort, ALineWithoutABreakIsNoFailure) {
  port.open(Pty::number, {});
  for (const int error : {EOPNOTSUPP, EPIPE, EINVAL, EIO}) {
    for (const bool on : {true, false}) {
      const auto setBreak = [&](const std::set<unsigned long>& refused) {
        const Watch watch(refuse(refused, error));
        return errorOf([&] { port.setBreak(on); });
      };
      const unsigned long request = on ? TIOCSBRK : TIOCCBRK;
      EXPECT_EQ(setBreak({request}), 0) << error;
      EXPECT_EQ(setBreak({request, askSettings}), 8020) << error << ", and the device is gone";
    }
  }
  Serial serial;
  const Watch watch(refuse({TIOCSBRK, askSettings}, EOPNOTSUPP));
  EXPECT_EQ(errorOf([&] { serial.ReadCom(1, 5, 1, "V", 1); }), 8020);
  EXPECT_TRUE(serial.FlgBreak) << "the break stays wanted until the line has taken it or has none";
}

/// What a device sees of the first two transactions of a fresh object, in echo mode and in fast mode. A wait
/// is one call that blocks, so that it costs nothing and ends as soon as there is news.
TEST_F(PosixPort, ABreakGoesOutBeforeTheFirstTransactionAlone) {
  const Bytes reply = bytes({'*', 2, 2, 0x20, 5, 1, 0, 9, '#'});
  port.open(Pty::number, {});
  for (const bool fast : {false, true}) {
    Serial serial;
    serial.NoEcho = fast;
    std::string seen;
    const Watch watch([&](const Call& call) -> Answer {
      if (call.number == SYS_ioctl) seen += call.arguments[1] == TIOCSBRK ? "break " : "no-break ";
      if (call.number == SYS_read && !seen.ends_with("read ")) seen += "read ";
      if (call.number == SYS_write) {
        seen += "write" + std::to_string(call.arguments[2]) + " ";
        EXPECT_EQ(::write(pty.far(), reply.data(), fast ? 9 : 0), fast ? 9 : 0);
      }
      if (call.number != SYS_ppoll) return {};
      EXPECT_EQ(call.arguments[1], 1) << "descriptor";
      const auto ms = call.at<timespec>(2).tv_sec * 1000 + call.at<timespec>(2).tv_nsec / 1'000'000;
      const bool rest = ms != 10 && ms != 100 && ms != 1000;  // of a wait that the system has ended early
      if (!rest) seen += (call.at<pollfd>(0).fd == -1 ? "pause" : "wait") + std::to_string(ms) + " ";
      return {};
    });
    for (int i = 0; i < 2; ++i) serial.ReadCom(1, 5, 1, "V", 1);
    const std::string exchange = fast ? "write7 wait1000 read " : "write1 wait100 read ";
    EXPECT_EQ(seen, "read break pause10 no-break pause100 read " + exchange + exchange);
  }
}

}  // namespace
}  // namespace velk::platform
