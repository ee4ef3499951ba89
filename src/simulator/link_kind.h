#pragma once

#include <array>
#include <memory>

#include "simulator/session.h"

namespace velk::simulator {

/// The interfaces that a controller may have.
enum class LinkKind : std::uint8_t { echo, fast, ethernetQ, ethernetS };

inline constexpr std::array allLinks{LinkKind::echo, LinkKind::fast, LinkKind::ethernetQ,
                                     LinkKind::ethernetS};

constexpr bool isSerial(LinkKind kind) {
  return kind == LinkKind::echo || kind == LinkKind::fast;
}

/// A connection to the controller through such an interface.
std::unique_ptr<Session> makeSession(LinkKind kind, Controller& controller, SessionOptions options = {});

}  // namespace velk::simulator
