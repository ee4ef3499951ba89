#pragma once

#include "platform/serial_port.h"
#include "platform/windows/handle.h"

namespace velk::platform {

/// Puts the settings into a port's state, with DTR and RTS on and no handshake. The state is the one that the
/// driver gave: limits stay as it likes them, and what another program may have left there goes.
void apply(const SerialSettings& settings, DCB& state);

}  // namespace velk::platform
