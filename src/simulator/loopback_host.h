#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>

#include "platform/host.h"
#include "simulator/peer.h"

namespace velk::simulator {

/// A host without an operating system: its clock and its lines are one object, so that a wait of two seconds
/// takes no time at all. Time stands still but in `block`, which goes to the next delivery or to the end of
/// the wait. The clock counts whole milliseconds; single precision would stand still late in the day.
class LoopbackHost final : public platform::Host {
 public:
  using Milliseconds = std::chrono::milliseconds;

  LoopbackHost();
  ~LoopbackHost() override;
  LoopbackHost(const LoopbackHost&) = delete;
  LoopbackHost& operator=(const LoopbackHost&) = delete;

  // --- The world around the host

  /// Puts a peer behind a serial port; each opening makes a new one.
  void plugIn(int portNumber, MakePeer makePeer);

  /// Pulls the cable: the port that is open fails from now on.
  void unplug();

  /// Puts a server behind a host name and port; each connection makes a new peer.
  void listen(const std::string& hostName, std::uint16_t portNumber, MakePeer makePeer);

  /// What each sending takes: with none, a host that polls would poll for ever.
  Milliseconds transferTime{0};

  /// The longest that `block` blocks before it returns early, as a system's waits may do.
  Milliseconds longestBlock = Milliseconds::max();

  /// Sets the time of day.
  void setClock(Milliseconds sinceMidnight) { clock_ = sinceMidnight; }

  /// The time that has passed since the host was made.
  [[nodiscard]] Milliseconds elapsed() const { return elapsed_; }

  /// How often the host's messages were dispatched, and what to run then.
  [[nodiscard]] int yields() const { return yields_; }
  std::function<void()> onYield;

  // --- Host

  float clock() override;
  std::chrono::nanoseconds steady() override { return elapsed_; }
  void yield() override;
  void block(platform::Source source, std::chrono::nanoseconds longest, platform::Messages messages) override;
  platform::SerialPort& port() override;
  platform::Socket& socket() override;

 private:
  class Line;
  class Port;
  class Connection;

  void advance(Milliseconds time);

  static constexpr Milliseconds morning{10 * 3600 * 1000};
  Milliseconds clock_ = morning;
  Milliseconds elapsed_{0};
  int yields_ = 0;
  std::map<int, MakePeer> ports_;
  std::map<std::pair<std::string, std::uint16_t>, MakePeer> servers_;
  std::unique_ptr<Port> port_;
  std::unique_ptr<Connection> connection_;
};

}  // namespace velk::simulator
