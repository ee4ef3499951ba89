#include "support/faulty_peer.h"

namespace velk::fuzz {

std::vector<simulator::Delivery> FaultyPeer::spoil(std::vector<simulator::Delivery> deliveries) {
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

}  // namespace velk::fuzz
