#include "cli/sim/serve.h"

#include <algorithm>
#include <map>
#include <thread>

namespace velk::cli {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// What is still to be sent, by its time; in the order it was added where times are equal.
class Schedule {
 public:
  void add(std::vector<simulator::Delivery> deliveries) {
    const auto now = steady_clock::now();
    for (auto& delivery : deliveries) waiting_.emplace(now + delivery.after, std::move(delivery));
  }

  /// Sends what is due. False: the peer hangs up.
  bool sendDue(Stream& stream) {
    Bytes due;
    bool hangUp = false;
    while (!hangUp && !waiting_.empty() && waiting_.begin()->first <= steady_clock::now()) {
      due += waiting_.begin()->second.bytes;
      hangUp = waiting_.begin()->second.hangUp;
      waiting_.erase(waiting_.begin());
    }
    if (!due.empty()) stream.send(due);
    return !hangUp;
  }

  [[nodiscard]] milliseconds untilNext() const {
    if (waiting_.empty()) return longestWait;
    const auto rest = std::chrono::floor<milliseconds>(waiting_.begin()->first - steady_clock::now());
    // The last part of a millisecond is slept away: a stream waits for whole ones, as long as a byte takes.
    if (rest.count() == 0) std::this_thread::sleep_until(waiting_.begin()->first);
    return std::clamp(rest, milliseconds(0), longestWait);
  }

 private:
  std::multimap<steady_clock::time_point, simulator::Delivery> waiting_;
};

}  // namespace

void serve(Stream& stream, simulator::Peer& peer, const std::stop_token& stop) {
  const std::stop_callback waking(stop, [&stream] { stream.wake(); });
  Schedule schedule;
  schedule.add(peer.connected());
  auto last = steady_clock::now();
  while (!stop.stop_requested() && schedule.sendDue(stream)) {
    const auto bytes = stream.receive(schedule.untilNext());
    if (!bytes) return;
    if (bytes->empty()) continue;
    const auto now = steady_clock::now();
    if (now - last >= simulator::frameGap) peer.quiet();
    last = now;
    schedule.add(peer.received(*bytes));
  }
}

}  // namespace velk::cli
