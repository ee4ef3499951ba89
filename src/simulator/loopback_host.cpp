#include "simulator/loopback_host.h"

#include <algorithm>

#include "values/runtime_error.h"

namespace velk::simulator {

using platform::Messages;
using platform::Source;
using Milliseconds = LoopbackHost::Milliseconds;

/// One connection to a peer: what is on its way to the host, by the time it arrives.
class LoopbackHost::Line {
 public:
  Line(LoopbackHost& host, const MakePeer& makePeer) : host_(host), peer_(makePeer()) {
    schedule(peer_->connected());
  }

  void send(std::string_view bytes) {
    if (host_.elapsed_ - lastSent_ >= frameGap) peer_->quiet();
    host_.advance(host_.transferTime);
    lastSent_ = host_.elapsed_;
    schedule(peer_->received(bytes));
  }

  Peer& peer() { return *peer_; }

  /// The bytes that have arrived.
  Bytes take() {
    Bytes bytes;
    while (hasArrived() && !arriving_.front().delivery.hangUp) {
      bytes += arriving_.front().delivery.bytes;
      arriving_.pop_front();
    }
    return bytes;
  }

  [[nodiscard]] bool hasArrived() const {
    return !arriving_.empty() && arriving_.front().time <= host_.elapsed_;
  }

  [[nodiscard]] bool hasEnded() const { return hasArrived() && arriving_.front().delivery.hangUp; }

  /// When the next delivery arrives, if one is on its way.
  [[nodiscard]] Milliseconds next(Milliseconds otherwise) const {
    return arriving_.empty() ? otherwise : std::min(otherwise, arriving_.front().time);
  }

 private:
  struct Arrival {
    Milliseconds time;
    Delivery delivery;
  };

  void schedule(std::vector<Delivery> deliveries) {
    for (Delivery& delivery : deliveries) {
      const Milliseconds time = host_.elapsed_ + std::chrono::ceil<Milliseconds>(delivery.after);
      const auto later = std::upper_bound(arriving_.begin(), arriving_.end(), time,
                                          [](Milliseconds t, const Arrival& a) { return t < a.time; });
      arriving_.insert(later, {time, std::move(delivery)});
    }
  }

  LoopbackHost& host_;
  std::unique_ptr<Peer> peer_;
  Milliseconds lastSent_{0};
  std::deque<Arrival> arriving_;
};

class LoopbackHost::Port final : public platform::SerialPort {
 public:
  explicit Port(LoopbackHost& host) : host_(host) {}

  void open(int number, const platform::SerialSettings& /*settings*/) override {
    if (line_) throw RuntimeError(RuntimeError::portAlreadyOpen);
    const auto found = host_.ports_.find(number);
    if (found == host_.ports_.end()) throw RuntimeError(RuntimeError::invalidPortNumber);
    line_ = std::make_unique<Line>(host_, found->second);
    failed_ = breaking_ = false;
  }

  void close() override {
    if (!line_) throw RuntimeError(RuntimeError::deviceNotOpen);
    line_.reset();
  }

  [[nodiscard]] bool isOpen() const override { return line_ != nullptr; }

  std::string_view read() override {
    requireWorking();
    received_ = line_->take();
    if (received_.empty() && line_->hasEnded()) throw RuntimeError(RuntimeError::deviceFailed);
    return received_;
  }

  void write(std::string_view bytes) override {
    requireWorking();
    line_->send(bytes);
  }

  void setBreak(bool on) override {
    requireWorking();
    if (breaking_ && !on) line_->peer().lineBreak();
    breaking_ = on;
  }

  void fail() { failed_ = true; }
  [[nodiscard]] const Line* line() const { return line_.get(); }

 private:
  void requireWorking() const {
    if (!line_) throw RuntimeError(RuntimeError::portNotOpen);
    if (failed_) throw RuntimeError(RuntimeError::deviceFailed);
  }

  LoopbackHost& host_;
  std::unique_ptr<Line> line_;
  Bytes received_;
  bool failed_ = false;
  bool breaking_ = false;
};

class LoopbackHost::Connection final : public platform::Socket {
 public:
  explicit Connection(LoopbackHost& host) : host_(host) {}

  void connect(const std::string& hostName, std::uint16_t portNumber) override {
    if (inUse_) throw RuntimeError(RuntimeError::socketNotClosed);
    inUse_ = true;
    const auto found = host_.servers_.find({hostName, portNumber});
    if (found != host_.servers_.end()) line_ = std::make_unique<Line>(host_, found->second);
  }

  void close() override {
    inUse_ = false;
    line_.reset();
  }

  [[nodiscard]] bool isOpen() const override { return inUse_; }
  [[nodiscard]] bool hasData() const override { return line_ && line_->hasArrived(); }
  [[nodiscard]] bool isDead() const override { return !line_; }

  std::string_view receive() override {
    if (!line_) throw RuntimeError(RuntimeError::badSocketState);
    received_ = line_->take();
    if (line_->hasEnded()) line_.reset();
    return received_;
  }

  void send(std::string_view bytes) override {
    if (!line_) throw RuntimeError(RuntimeError::badSocketState);
    line_->send(bytes);
  }

  [[nodiscard]] const Line* line() const { return line_.get(); }

 private:
  LoopbackHost& host_;
  bool inUse_ = false;
  std::unique_ptr<Line> line_;
  Bytes received_;
};

LoopbackHost::LoopbackHost()
    : port_(std::make_unique<Port>(*this)), connection_(std::make_unique<Connection>(*this)) {}

LoopbackHost::~LoopbackHost() = default;

void LoopbackHost::plugIn(int portNumber, MakePeer makePeer) {
  ports_[portNumber] = std::move(makePeer);
}

void LoopbackHost::unplug() {
  port_->fail();
}

void LoopbackHost::listen(const std::string& hostName, std::uint16_t portNumber, MakePeer makePeer) {
  servers_[{hostName, portNumber}] = std::move(makePeer);
}

float LoopbackHost::clock() {
  return static_cast<float>(static_cast<double>(clock_.count()) / 1000);
}

void LoopbackHost::yield() {
  ++yields_;
  if (onYield) onYield();
}

void LoopbackHost::block(Source source, std::chrono::nanoseconds longest, Messages messages) {
  const Milliseconds end = elapsed_ + std::min(std::chrono::ceil<Milliseconds>(longest), longestBlock);
  const Line* const line = source == Source::port     ? port_->line()
                           : source == Source::socket ? connection_->line()
                                                      : nullptr;
  advance(std::max(elapsed_, line != nullptr ? line->next(end) : end) - elapsed_);
  if (messages == Messages::dispatched) yield();
}

platform::SerialPort& LoopbackHost::port() {
  return *port_;
}

platform::Socket& LoopbackHost::socket() {
  return *connection_;
}

void LoopbackHost::advance(Milliseconds time) {
  constexpr Milliseconds day{86'400'000};
  elapsed_ += time;
  clock_ = (clock_ + time) % day;
}

}  // namespace velk::simulator
