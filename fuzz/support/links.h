#pragma once

#include <memory>

#include "component/serial.h"
#include "simulator/ethernet_sessions.h"
#include "simulator/loopback_host.h"
#include "simulator/serial_sessions.h"

namespace velk::fuzz {

enum class LinkKind : Byte { echo, fast, ethernetQ, ethernetS };
constexpr std::size_t linkKinds = 4;

constexpr bool isSerial(LinkKind kind) {
  return kind == LinkKind::echo || kind == LinkKind::fast;
}

inline std::unique_ptr<simulator::Peer> makeSession(LinkKind kind, simulator::Controller& controller) {
  switch (kind) {
    case LinkKind::echo:
      return std::make_unique<simulator::EchoSession>(controller, simulator::SessionOptions());
    case LinkKind::fast:
      return std::make_unique<simulator::FastSession>(controller, simulator::SessionOptions());
    case LinkKind::ethernetQ:
      return std::make_unique<simulator::EthernetQSession>(controller, simulator::SessionOptions());
    case LinkKind::ethernetS:
      break;
  }
  return std::make_unique<simulator::EthernetSSession>(controller, simulator::SessionOptions());
}

/// Opens a link to what `makePeer` makes. Returns the result of the method that opens it.
inline Byte open(Serial& serial, simulator::LoopbackHost& host, LinkKind kind,
                 simulator::LoopbackHost::MakePeer makePeer) {
  if (isSerial(kind)) {
    host.plugIn(1, std::move(makePeer));
    return serial.OpenCom(1, 9600, kind == LinkKind::fast);
  }
  host.listen("house", 1000, std::move(makePeer));
  return serial.OpenTCP("house", 1000);
}

}  // namespace velk::fuzz
