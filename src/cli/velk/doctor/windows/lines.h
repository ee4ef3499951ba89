#pragma once

#include "cli/velk/doctor/windows/check_report.h"

/// Whether serial ports do what the component asks of them.
namespace velk::cli {

/// The settings with which the component opens a serial port, as the driver reads them back.
Finding checkLineSettings(int port);

/// A line break from one port to the other as the component sends it.
Finding checkBreak(int port, int otherPort);

}  // namespace velk::cli
