#pragma once

#include "component/serial.h"
#include "simulator/controller.h"

namespace velk::cli {

/// A controller in process that shows what another one holds, and keeps to itself what is written to it. Each byte is
/// read once, when it is first asked for; why that fails passes through `Serial` as a `Failure`.
class Draft : public simulator::Controller {
 public:
  explicit Draft(Serial& original);
};

}  // namespace velk::cli
