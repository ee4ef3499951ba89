#pragma once

#include <string>

namespace velk::cli {

/// Why a serial device cannot be opened at a rate in bit/s, and what to do, as the end of a sentence.
std::string whyNoPort(const std::string& device, int baud);

}  // namespace velk::cli
