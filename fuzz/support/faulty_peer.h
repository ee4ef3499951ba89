#pragma once

#include <memory>

#include "simulator/peer.h"
#include "support/input.h"

namespace velk::fuzz {

/// An interface of the controller whose replies go through the fuzzer's hands: each is passed on, lost,
/// replaced, cut, overwritten, doubled, delayed or answered with the end of the connection. With the input at
/// its end the interface is as good as new.
class FaultyPeer final : public simulator::Peer {
 public:
  FaultyPeer(std::unique_ptr<simulator::Peer> peer, Input& input) : peer_(std::move(peer)), input_(input) {}

  std::vector<simulator::Delivery> connected() override { return spoil(peer_->connected()); }
  std::vector<simulator::Delivery> received(std::string_view bytes) override {
    return spoil(peer_->received(bytes));
  }
  void lineBreak() override { peer_->lineBreak(); }
  void quiet() override { peer_->quiet(); }

  enum Fault : Byte { none, lost, replaced, cut, overwritten, doubled, delayed, ended, faults };

 private:
  std::vector<simulator::Delivery> spoil(std::vector<simulator::Delivery> deliveries) {
    const auto fault = static_cast<Fault>(input_.below(faults));
    if (fault == none) return deliveries;
    if (fault == lost) return {};
    if (fault == ended) return {{.bytes = {}, .after = {}, .hangUp = true}};
    if (fault == replaced) return {{.bytes = input_.text()}};
    if (deliveries.empty()) return deliveries;

    Bytes& bytes = deliveries.back().bytes;
    switch (fault) {
      case cut:
        bytes.resize(input_.below(bytes.size() + 1));
        break;
      case overwritten: {
        const std::size_t from = input_.below(bytes.size() + 1);
        const Bytes text = input_.text();
        bytes.replace(from, text.size(), text);
        break;
      }
      case doubled:
        deliveries.push_back(deliveries.back());
        break;
      default:
        deliveries.back().after = std::chrono::milliseconds(input_.byte() * 16);
    }
    return deliveries;
  }

  std::unique_ptr<simulator::Peer> peer_;
  Input& input_;
};

/// Puts the input's faults on each interface that a link is opened to.
inline auto throughHandsOf(Input& faults) {
  return [&faults](auto session) { return std::make_unique<FaultyPeer>(std::move(session), faults); };
}

}  // namespace velk::fuzz
