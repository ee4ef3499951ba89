#pragma once

#include <string>

#include "cli/velk/connection/connection.h"

namespace velk::cli {

/// Reads a link as one text:
///
///     tcp://HOST:PORT?password=TEXT&address=N
///     serial:DEVICE?fast&baud=N&address=N
///     simulate:
///     backup:FILE
///
/// What stands behind "?" may be left out. Texts have escapes ("\x26" is "&"). Throws std::invalid_argument
/// with a sentence.
LinkOptions parseLink(const std::string& text);

/// Sets the bus address. Throws std::invalid_argument with a sentence.
void setBusAddress(LinkOptions& link, const std::string& digits);

/// The link as such a text, without its password; "none" when there is none.
std::string nameOf(const LinkOptions& link);

/// The rates that serial links take, in bit/s.
constexpr int lowestBaud = 1;
constexpr int highestBaud = 32767;

}  // namespace velk::cli
