#include "simulator/link_kind.h"

#include "simulator/ethernet_sessions.h"
#include "simulator/serial_sessions.h"

namespace velk::simulator {
namespace {

template <class Interface>
std::unique_ptr<Session> make(Controller& controller, SessionOptions options) {
  return std::make_unique<Interface>(controller, std::move(options));
}

}  // namespace

std::unique_ptr<Session> makeSession(LinkKind kind, Controller& controller, SessionOptions options) {
  constexpr std::array makers{make<EchoSession>, make<FastSession>, make<EthernetQSession>,
                              make<EthernetSSession>};
  return makers.at(static_cast<std::size_t>(kind))(controller, std::move(options));
}

}  // namespace velk::simulator
