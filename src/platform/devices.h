#pragma once

namespace velk::platform {

/// Keeps the count behind `openDevices`: every port and socket reports when it opens and closes.
void deviceOpened();
void deviceClosed();

}  // namespace velk::platform
