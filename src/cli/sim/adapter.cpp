#include "cli/sim/adapter.h"

#include <algorithm>

namespace velk::cli {

std::vector<simulator::Delivery> DelayedPeer::delayed(std::vector<simulator::Delivery> deliveries,
                                                      std::size_t sent) {
  const auto now = std::chrono::steady_clock::now();
  toPeer_ = std::max(toPeer_, now) + delay_.byteTime * sent;
  for (simulator::Delivery& delivery : deliveries) {
    // What the peer itself sends late does not hold up what it sends before that.
    const bool isLate = delivery.after.count() != 0;
    const auto start = isLate ? toPeer_ + delivery.after : std::max(fromPeer_, toPeer_);
    const auto end = start + delay_.byteTime * delivery.bytes.size();
    if (!isLate) fromPeer_ = end;
    delivery.after = std::chrono::ceil<std::chrono::microseconds>(end + delay_.latency - now);
  }
  return deliveries;
}

}  // namespace velk::cli
