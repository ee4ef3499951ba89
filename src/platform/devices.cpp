#include "platform/devices.h"

#include <atomic>

#include "platform/host.h"

namespace velk::platform {
namespace {

std::atomic<int> count{0};

}  // namespace

void deviceOpened() {
  ++count;
}

void deviceClosed() {
  --count;
}

int openDevices() {
  return count;
}

}  // namespace velk::platform
