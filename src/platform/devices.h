#pragma once

#include <optional>
#include <string>

namespace velk::platform {

/// Keeps the count behind `openDevices`: every port and socket reports when it opens and closes.
void deviceOpened();
void deviceClosed();

/// The device that `mapPort` has given a port number, if it has.
std::optional<std::string> mappedPort(int number);

}  // namespace velk::platform
