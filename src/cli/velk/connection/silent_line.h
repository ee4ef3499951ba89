#pragma once

#include <string>

#include "cli/velk/connection/connection.h"

namespace velk::cli {

/// Why a serial line that is open on a host gives no answers: asks it once in each mode. Empty when it answers
/// as it was asked, so that only one request was lost.
std::string whySilent(const LinkOptions& link, platform::Host& host);

}  // namespace velk::cli
