#include <atomic>
#include <barrier>
#include <iterator>
#include <memory>
#include <thread>

#include "posix/bare_clients.h"
#include "posix/sections.h"
#include "posix/servers.h"
#include "velk_client.h"

namespace velk::bench {
namespace {

using std::chrono::milliseconds;

constexpr int rounds = 8;
constexpr milliseconds turn{250};

/// Threads with a connection each, which work while it is their turn.
template <class ClientKind>
class Team {
 public:
  Team(std::size_t size, std::uint16_t port) : gate_(static_cast<std::ptrdiff_t>(size) + 1), samples_(size) {
    for (std::size_t i = 0; i < size; ++i) {
      threads_.emplace_back([this, i, port] { work(port, samples_[i]); });
    }
    gate_.arrive_and_wait();
  }
  Team(const Team&) = delete;
  Team& operator=(const Team&) = delete;

  ~Team() {
    ended_ = true;
    gate_.arrive_and_wait();
  }

  void takeTurn() {
    running_ = true;
    const auto start = Clock::now();
    gate_.arrive_and_wait();
    std::this_thread::sleep_for(turn);
    running_ = false;
    gate_.arrive_and_wait();
    time_ += microsecondsSince(start);
  }

  void report(Figures& figures, const std::string& name) {
    Samples all;
    for (const Samples& samples : samples_)
      std::copy(samples.begin(), samples.end(), std::back_inserter(all));
    figures[name + ".rate"] = static_cast<double>(all.size()) / time_ * 1e6;
    figures[name + ".p50"] = percentile(all, 0.5);
    figures[name + ".p99"] = percentile(all, 0.99);
  }

 private:
  void work(std::uint16_t port, Samples& samples) {
    ClientKind client(port);
    client.transact();
    gate_.arrive_and_wait();
    for (;;) {
      gate_.arrive_and_wait();
      if (ended_) return;
      while (running_) {
        const auto start = Clock::now();
        client.transact();
        samples.push_back(microsecondsSince(start));
      }
      gate_.arrive_and_wait();
    }
  }

  std::barrier<> gate_;
  std::atomic<bool> running_{false};
  std::atomic<bool> ended_{false};
  double time_ = 0;
  std::vector<Samples> samples_;
  std::vector<std::jthread> threads_;  // last: they use the rest until they have ended
};

}  // namespace

void measureThreads(Figures& figures) {
  for (const std::size_t count : {1, 10, 100, 500}) {
    const TcpServer server = startTcpServer();
    Team<VelkClient> velk(count, server.port);
    Team<BareTcpClient> bare(count, server.port);
    for (int round = 0; round < rounds; ++round) {
      velk.takeTurn();
      bare.takeTurn();
    }
    const std::string name = "threads." + std::to_string(count);
    velk.report(figures, name + ".velk");
    bare.report(figures, name + ".bare");
  }
}

}  // namespace velk::bench
