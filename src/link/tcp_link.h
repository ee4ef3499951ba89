#pragma once

#include <string>

#include "link/link.h"

namespace velk::link {

/// Connects, recognises the interface by its greeting and logs in. Returns 0, 252 for no or another greeting,
/// or the first byte of the login reply; run-time errors of the socket are raised. `password` comes back as
/// the four bytes used; with kind "S" only when it was blank.
Byte openTcp(Link link, const std::string& ipAddress, std::int16_t portNumber, std::string& password,
             Byte busAddress);

/// Closes the socket; settings stay as they are.
void closeTcp(Link link);

}  // namespace velk::link
