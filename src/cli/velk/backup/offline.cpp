#include "cli/velk/backup/offline.h"

#include "cli/velk/connection/expect_done.h"
#include "simulator/ethernet_sessions.h"

namespace velk::cli {

Offline::Offline(const Lines& lines) : controller_(storeOf(lines)), serial_(host_) {
  constexpr const char* name = "backup";
  host_.listen(name, 1, [this] {
    return std::make_unique<simulator::EthernetSSession>(controller_, simulator::SessionOptions{});
  });
  expectDone(serial_.OpenTCP(name, 1), "opening a backup");
}

}  // namespace velk::cli
