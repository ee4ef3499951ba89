#pragma once

#include <string_view>

#include "link/frames.h"
#include "link/link.h"

namespace velk::link {

/// Sends the frame of a request over the serial port and checks the reply, in up to `attempts` attempts; 0
/// means 3. The waits in here hold the host's messages; they are dispatched between the steps only.
Bytes serialTransaction(Link link, const Request& request, std::string_view frame, Byte attempts);

}  // namespace velk::link
