#pragma once

#include <chrono>
#include <memory>

#include "simulator/peer.h"

namespace velk::cli {

/// How late bytes come through the adapter of a serial line or through a network.
struct Delay {
  std::chrono::microseconds latency{0};   ///< that each reply is held back
  std::chrono::microseconds byteTime{0};  ///< of the line, in each direction
};

/// A peer behind an adapter: bytes take their time on the line, one after another, and those of the peer are
/// held back by the latency at the end.
class DelayedPeer final : public simulator::Peer {
 public:
  DelayedPeer(std::unique_ptr<simulator::Peer> peer, Delay delay) : peer_(std::move(peer)), delay_(delay) {}

  std::vector<simulator::Delivery> connected() override { return delayed(peer_->connected(), 0); }
  std::vector<simulator::Delivery> received(std::string_view bytes) override {
    return delayed(peer_->received(bytes), bytes.size());
  }
  void lineBreak() override { peer_->lineBreak(); }
  void quiet() override { peer_->quiet(); }

 private:
  /// What the peer sends when so many bytes have been sent to it just now.
  std::vector<simulator::Delivery> delayed(std::vector<simulator::Delivery> deliveries, std::size_t sent);

  std::unique_ptr<simulator::Peer> peer_;
  Delay delay_;
  std::chrono::steady_clock::time_point toPeer_;    ///< when the line there is free
  std::chrono::steady_clock::time_point fromPeer_;  ///< when the line back is free
};

}  // namespace velk::cli
