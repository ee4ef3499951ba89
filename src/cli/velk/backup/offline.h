#pragma once

#include "cli/house/backup_file.h"
#include "component/serial.h"
#include "simulator/controller.h"
#include "simulator/loopback_host.h"

namespace velk::cli {

/// A controller that is not there: a backup's memory behind a link of its own, so that it is read like any
/// other.
class Offline {
 public:
  explicit Offline(const Lines& lines);
  Offline(const Offline&) = delete;
  Offline& operator=(const Offline&) = delete;

  [[nodiscard]] Serial& serial() { return serial_; }

 private:
  simulator::Controller controller_;
  simulator::LoopbackHost host_;
  Serial serial_;
};

}  // namespace velk::cli
