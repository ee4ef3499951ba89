#pragma once

#include <filesystem>

#include "cli/velk/connection/serial_ports.h"

namespace velk::cli {

/// The same by the system's files below a root, which is "/".
std::vector<SerialPortFacts> serialPortsBelow(const std::filesystem::path& root);

}  // namespace velk::cli
