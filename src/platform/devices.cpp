#include "platform/devices.h"

#include <atomic>
#include <map>
#include <mutex>

#include "platform/host.h"

namespace velk::platform {
namespace {

std::atomic<int> count{0};

std::mutex mapMutex;

std::map<int, std::string>& portMap() {
  static std::map<int, std::string> map;
  return map;
}

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

std::optional<std::string> mappedPort(int number) {
  const std::lock_guard lock(mapMutex);
  const auto found = portMap().find(number);
  return found == portMap().end() ? std::nullopt : std::optional(found->second);
}

void mapPort(int number, const std::string& devicePath) {
  const std::lock_guard lock(mapMutex);
  if (devicePath.empty()) {
    portMap().erase(number);
  } else {
    portMap()[number] = devicePath;
  }
}

}  // namespace velk::platform
