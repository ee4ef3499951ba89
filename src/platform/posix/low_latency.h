#pragma once

#include "platform/posix/fd.h"

namespace velk::platform {

/// The driver's low-latency flag. A USB adapter holds what has come back for up to 16 ms to send more at once;
/// in echo mode, where each byte waits for the one before, that makes a transfer many times as long. Nothing
/// happens where a driver has no such flag or does not let this user set it.
class LowLatency {
 public:
  /// Sets the flag of an open device.
  void begin(int fd);

  /// Clears it again where `begin` has set it; other settings stay as they are by now.
  void end();

 private:
  int fd_ = Fd::none;  ///< of the device whose flag is ours
};

}  // namespace velk::platform
