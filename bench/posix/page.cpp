#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "frames.h"
#include "platform/posix/fd.h"
#include "posix/child.h"
#include "posix/sections.h"

namespace velk::bench {
namespace {

using std::chrono::milliseconds;

constexpr int rounds = 10;
constexpr milliseconds turn{1000};
constexpr int pacedRequests = 3000;
constexpr milliseconds pace{1};
constexpr milliseconds rest{500};  ///< for what is still to be told

void require(bool condition, const char* fault) {
  if (!condition) throw std::runtime_error(fault);
}

platform::Fd connectedTo(std::uint16_t port) {
  platform::Fd fd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  require(connect(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
          "page: no connection");
  const int on = 1;
  setsockopt(fd.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  return fd;
}

/// The program beside this one, with its page.
class Simulator {
 public:
  Simulator() : process_([this] { become(); }) {
    ends_[1] = platform::Fd();
    std::string said;
    std::array<char, 256> buffer{};
    while (said.find("ready") == std::string::npos) {
      const auto n = read(ends_[0].get(), buffer.data(), buffer.size());
      require(n > 0, "page: velk-sim did not start");
      said.append(buffer.data(), static_cast<std::size_t>(n));
    }
    port = portBehind(said, "tcp Q 127.0.0.1:");
    page = portBehind(said, "web http://127.0.0.1:");
  }

  std::uint16_t port = 0;
  std::uint16_t page = 0;

 private:
  static std::array<platform::Fd, 2> makePipe() {
    std::array<int, 2> ends{};
    require(pipe(ends.data()) == 0, "page: no pipe");
    return {platform::Fd(ends[0]), platform::Fd(ends[1])};
  }

  [[noreturn]] void become() const {
    dup2(ends_[1].get(), STDOUT_FILENO);
    const auto program = std::filesystem::canonical("/proc/self/exe").parent_path() / "velk-sim";
    execl(program.c_str(), "velk-sim", "--tcp", "0", "--web", "0", nullptr);
    _exit(127);
  }

  static std::uint16_t portBehind(const std::string& text, const std::string& words) {
    const auto at = text.find(words);
    require(at != std::string::npos, "page: velk-sim says something else");
    return static_cast<std::uint16_t>(std::stoi(text.substr(at + words.size())));
  }

  std::array<platform::Fd, 2> ends_ = makePipe();
  Child process_;
};

/// A host that reads 16 bytes again and again.
class Host {
 public:
  explicit Host(std::uint16_t port) : fd_(connectedTo(port)) {
    exchange("", greeting.size());
    constexpr std::string_view login = "VELK\0\1\0\1\0\xf0\0\4\0\0\0\0"sv;
    exchange(login, tcpExchange.replyHead.size() - 1);
  }

  void transact() { exchange(tcpExchange.request, tcpExchange.replyHead.size() + data.size()); }

 private:
  void exchange(std::string_view request, std::size_t expected) {
    std::array<char, 512> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by recv
    require(
        send(fd_.get(), request.data(), request.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(request.size()),
        "page: send");
    require(recv(fd_.get(), buffer.data(), expected, MSG_WAITALL) == static_cast<ssize_t>(expected),
            "page: wrong reply");
  }

  platform::Fd fd_;
};

/// Reads the events of the page, and no more.
class Reader {
 public:
  explicit Reader(std::uint16_t port) : fd_(connectedTo(port)) {
    constexpr std::string_view request = "GET /api/events HTTP/1.1\r\nHost: localhost\r\n\r\n";
    require(send(fd_.get(), request.data(), request.size(), MSG_NOSIGNAL) > 0, "page: send");
    thread_ = std::jthread([this] { readAll(); });
    std::this_thread::sleep_for(rest);
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  ~Reader() { shutdown(fd_.get(), SHUT_RDWR); }

  /// How many requests it was told in words, so far. They are counted where they begin.
  [[nodiscard]] int told() const { return told_; }

 private:
  void readAll() {
    constexpr std::string_view mark = R"({"n":)";
    std::array<char, 65536> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by recv
    std::string text;
    for (auto n = recv(fd_.get(), buffer.data(), buffer.size(), 0); n > 0;
         n = recv(fd_.get(), buffer.data(), buffer.size(), 0)) {
      text.append(buffer.data(), static_cast<std::size_t>(n));
      std::size_t from = 0;
      for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, from)) {
        from = at + mark.size();
        ++told_;
      }
      text.erase(0, std::max(from, text.size() - std::min(text.size(), mark.size() - 1)));
    }
  }

  platform::Fd fd_;
  std::atomic<int> told_{0};
  std::jthread thread_;  // last: it uses the rest until it has ended
};

/// Requests a second at full speed.
double rateOf(Host& host) {
  const auto start = Clock::now();
  int count = 0;
  while (Clock::now() - start < turn) {
    host.transact();
    ++count;
  }
  return count / (microsecondsSince(start) / 1e6);
}

int lostOf(Host& host, const Simulator& simulator) {
  const Reader reader(simulator.page);
  const int before = reader.told();
  auto next = Clock::now();
  for (int i = 0; i < pacedRequests; ++i) {
    std::this_thread::sleep_until(next += pace);
    host.transact();
  }
  std::this_thread::sleep_for(rest);
  return pacedRequests - (reader.told() - before);
}

}  // namespace

void measurePage(Figures& figures) {
  const Simulator simulator;
  Host host(simulator.port);
  figures["page.lost"] = lostOf(host, simulator);
  Samples ratios;
  for (int round = 0; round < rounds; ++round) {
    const double alone = rateOf(host);
    const Reader reader(simulator.page);
    ratios.push_back(rateOf(host) / alone);
    figures["page.alone"] += alone / rounds;
  }
  figures["page.watched"] = percentile(ratios, 0.5);
}

}  // namespace velk::bench
