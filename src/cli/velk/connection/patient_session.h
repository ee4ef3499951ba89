#pragma once

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/peer.h"

namespace velk::cli {

/// A session whose devices may refuse a request by throwing: it forgets the request then, and the next one stands alone
/// again.
class PatientSession final : public simulator::Peer {
 public:
  explicit PatientSession(std::unique_ptr<simulator::Peer> peer) : peer_(std::move(peer)) {}

  std::vector<simulator::Delivery> connected() override { return peer_->connected(); }
  std::vector<simulator::Delivery> received(std::string_view bytes) override {
    try {
      return peer_->received(bytes);
    } catch (...) {
      peer_->quiet();
      throw;
    }
  }

 private:
  std::unique_ptr<simulator::Peer> peer_;
};

}  // namespace velk::cli
