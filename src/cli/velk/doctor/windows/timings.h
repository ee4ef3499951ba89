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

/// The settings with which the component opens a serial port, as the driver reads them back.
Finding checkLineSettings(int port);

/// A line break from one port to the other as the component sends it.
Finding checkBreak(int port, int otherPort);

}  // namespace velk::cli
