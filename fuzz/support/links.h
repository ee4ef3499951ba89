#pragma once

#include <memory>

#include "component/serial.h"
#include "simulator/link_kind.h"
#include "simulator/loopback_host.h"

namespace velk::fuzz {

using simulator::allLinks;
using simulator::LinkKind;
using simulator::makeSession;

/// Opens a link to what `makePeer` makes. Returns the result of the method that opens it.
inline Byte open(Serial& serial, simulator::LoopbackHost& host, LinkKind kind,
                 simulator::LoopbackHost::MakePeer makePeer) {
  if (simulator::isSerial(kind)) {
    host.plugIn(1, std::move(makePeer));
    return serial.OpenCom(1, 9600, kind == LinkKind::fast);
  }
  host.listen("house", 1000, std::move(makePeer));
  return serial.OpenTCP("house", 1000);
}

}  // namespace velk::fuzz
