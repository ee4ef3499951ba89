#pragma once

#include <cstdint>
#include <string>

#include "cli/velk/doctor/windows/check_report.h"

/// How long things take here, and whether any of them ends too early.
namespace velk::cli {

/// Waits of several lengths as methods wait.
Finding checkWaits();

/// Reads over a port of kind Q, beside a client that does nothing but send and receive the same bytes.
Finding checkTcpReads(std::uint16_t port, const std::string& password);

}  // namespace velk::cli
