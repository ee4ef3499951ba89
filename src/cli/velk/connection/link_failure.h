#pragma once

#include <string>

#include "cli/velk/connection/connection.h"

namespace velk::cli {

/// Why a link did not open, and what to look at, in a sentence.
/// @param result of `OpenTCP` or `OpenCom`, not 0
/// The socket or port of the thread is that of the link.
/// @param greeted whether an interface has answered, so that the result is that of the login
std::string failureToOpen(const LinkOptions& link, Byte result, bool greeted);

/// The reason alone, with what to do behind a semicolon.
std::string whyNotOpen(const LinkOptions& link, Byte result, bool greeted);

}  // namespace velk::cli
