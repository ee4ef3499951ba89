#include "cli/velk/connection/draft.h"

#include <memory>
#include <set>

#include "cli/velk/connection/transfer.h"

namespace velk::cli {
namespace {

using simulator::Address;
using simulator::Store;
using simulator::Transfer;

class Original final : public simulator::Device {
 public:
  explicit Original(Serial& serial) : serial_(serial) {}

  [[nodiscard]] bool covers(Address /*at*/) const override { return true; }

  void beforeRead(Store& store, const Transfer& transfer) override {
    if (isKnown(transfer)) return;
    const Bytes bytes = readMemory(serial_, transfer.first, transfer.count);
    for (std::size_t i = 0; i < transfer.count; ++i) {
      const Address at = transfer.first.next(i);
      // What was written stays so.
      if (known_.insert(at).second) store[at] = byteAt(bytes, i);
    }
  }

  void afterWrite(Store& /*store*/, const Transfer& transfer) override {
    for (std::size_t i = 0; i < transfer.count; ++i) known_.insert(transfer.first.next(i));
  }

 private:
  [[nodiscard]] bool isKnown(const Transfer& transfer) const {
    for (std::size_t i = 0; i < transfer.count; ++i) {
      if (!known_.contains(transfer.first.next(i))) return false;
    }
    return true;
  }

  Serial& serial_;
  std::set<Address> known_;
};

}  // namespace

Draft::Draft(Serial& original) {
  attach(std::make_unique<Original>(original));
}

}  // namespace velk::cli
