#pragma once

#include <memory>

#include "component/serial.h"
#include "simulator/house.h"
#include "simulator/house_modules.h"
#include "simulator/link_kind.h"
#include "simulator/loopback_host.h"
#include "support/input.h"

namespace velk::fuzz {

using simulator::LinkKind;

/// A host with an object, and a house with its modules behind every link.
struct Bench {
  Bench() {
    simulator::attachModules(controller);
    host.transferTime = std::chrono::milliseconds(1);
  }

  /// Opens a link to the house, or to what `wrap` makes of its interface. Returns the result of the method
  /// that opens it.
  template <class Wrap>
  Byte open(LinkKind kind, Wrap wrap) {
    const auto peer = [=, this]() -> std::unique_ptr<simulator::Peer> {
      return wrap(makeSession(kind, controller));
    };
    if (simulator::isSerial(kind)) {
      host.plugIn(1, peer);
      return serial.OpenCom(1, 9600, kind == LinkKind::fast);
    }
    host.listen("house", 1000, peer);
    return serial.OpenTCP("house", 1000);
  }
  Byte open(LinkKind kind) {
    return open(kind, [](auto session) { return session; });
  }

  /// What a read of the mode of output 5 has to give.
  Bytes mode() { return controller.answer({.command = 0x20, .high = 5, .low = 1, .data = {}}).bytes(); }

  simulator::Controller controller{simulator::house()};
  simulator::LoopbackHost host;
  Serial serial{host};
};

inline LinkKind linkOf(Input& input) {
  return simulator::allLinks.at(input.below(simulator::allLinks.size()));
}

}  // namespace velk::fuzz
