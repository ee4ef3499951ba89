#pragma once

#include <string>

#include "values/bytes.h"

namespace velk::link {

/// The bus addresses that a controller may have. `OpenTCP` takes any other for the default.
constexpr Byte lowestBusAddress = 2;
constexpr Byte highestBusAddress = 99;
constexpr Byte defaultBusAddress = 2;

/// The bytes of the password with which a host logs in to an Ethernet interface of kind "Q".
constexpr std::size_t passwordLength = 4;

/// The public settings of a `Serial` object, read at every transaction: writing one takes effect with the
/// next. The members are bound as properties and go by the interface's names, on purpose.
struct Settings {
  /// True: the next serial transaction first sends a line break (10 ms on, 100 ms to settle) and clears this.
  bool FlgBreak = true;

  /// Bus address of the controller, sent in fast-mode frames; echo-mode frames carry none.
  Byte SerAddress = defaultBusAddress;

  /// False: echo mode, the serial interface echoes every byte. True: fast mode, whole frames at once.
  bool NoEcho = false;

  /// True: transactions go over the socket.
  bool TCP = false;

  /// The kind of Ethernet interface, from its greeting: "Q" (with login) or "S".
  std::string SoortETH = "Q";

  [[nodiscard]] bool isKindQ() const { return SoortETH.size() == 1 && SoortETH.front() == 'Q'; }
};

}  // namespace velk::link
