#pragma once

#include "link/link.h"

namespace velk::link {

/// Opens the serial port and waits 0.5 s for the interface to settle. Run-time errors of the port are raised.
void openCom(Link link, Byte number, std::int16_t baudrate, bool fastMode);

/// Closes the serial port.
void closeCom(Link link);

}  // namespace velk::link
