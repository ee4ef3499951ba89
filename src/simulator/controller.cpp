#include "simulator/controller.h"

#include <algorithm>

namespace velk::simulator {
namespace {

bool touches(const Device& device, Place first, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    if (device.covers(after(first, i))) return true;
  }
  return false;
}

}  // namespace

Reply refusal(const link::Request& request, Byte status) {
  const std::size_t size = link::hasShortReply(request.command) ? 0 : link::dataCount(request.command);
  return {.status = status, .data = Bytes(size, '\0')};
}

Reply Controller::answer(const link::Request& request) {
  const Place first{.memory = memoryOf(request.command), .dph = request.dph, .dpl = request.dpl};
  const std::size_t count = link::dataCount(request.command);
  const bool isWrite = (request.command & link::write) != 0;
  if (request.data.size() != (isWrite ? count : 0)) return refusal(request, refused);

  const std::lock_guard lock(mutex_);
  const auto devices = devicesIn(first, count);
  if (isWrite) {
    store_.write(first, request.data);
    for (Device* const device : devices) device->afterWrite(store_);
    return {};
  }
  for (Device* const device : devices) device->beforeRead(store_);
  if (link::hasShortReply(request.command)) return {};
  return {.status = carriedOut, .data = store_.read(first, count)};
}

void Controller::attach(std::unique_ptr<Device> device) {
  const std::lock_guard lock(mutex_);
  devices_.push_back(std::move(device));
}

Store Controller::snapshot() const {
  const std::lock_guard lock(mutex_);
  return store_;
}

std::vector<Device*> Controller::devicesIn(Place first, std::size_t count) const {
  std::vector<Device*> found;
  for (const auto& device : devices_) {
    if (touches(*device, first, count)) found.push_back(device.get());
  }
  return found;
}

}  // namespace velk::simulator
