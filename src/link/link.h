#pragma once

#include "link/settings.h"
#include "platform/host.h"

namespace velk::link {

/// What every transaction needs: the object's settings and the thread's port, socket and clock.
struct Link {
  Settings& settings;
  platform::Host& host;
};

/// One-byte results of a failed transaction.
enum LinkError : Byte {
  noMatchingReply = 251,  ///< no reply with the request's header after resynchronising
  noReply = 252,          ///< no reply, or a wrong length to a read
  wrongWriteReply = 253,  ///< wrong reply length to a write
  echoFault = 254,        ///< echo fault, bad status, or a foreign header over TCP
};

}  // namespace velk::link
