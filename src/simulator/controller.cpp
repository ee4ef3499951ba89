#include "simulator/controller.h"

namespace velk::simulator {
namespace {

template <class Test>
bool anyByte(const Transfer& transfer, Test test) {
  for (std::size_t i = 0; i < transfer.count; ++i) {
    if (test(transfer.first.next(i))) return true;
  }
  return false;
}

}  // namespace

bool Transfer::covers(Address at) const {
  return anyByte(*this, [at](Address touched) { return touched == at; });
}

Reply refusal(const link::Request& request, Byte status) {
  const std::size_t size = link::hasShortReply(request.command) ? 0 : link::dataCount(request.command);
  return {.status = status, .data = Bytes(size, '\0')};
}

Reply Controller::answer(const link::Request& request) {
  const Address first = addressAt(link::areaOf(request.command), request.high, request.low);
  const std::size_t count = link::dataCount(request.command);
  const Transfer transfer{.first = first, .count = count};
  const bool isWrite = (request.command & link::write) != 0;
  if (request.data.size() != (isWrite ? count : 0)) return refusal(request, refused);

  const std::lock_guard lock(mutex_);
  const auto devices = devicesIn(transfer);
  if (isWrite) {
    for (Device* const device : devices) device->beforeWrite(store_, transfer);
    store_.write(first, request.data);
    for (Device* const device : devices) device->afterWrite(store_, transfer);
    return {};
  }
  for (Device* const device : devices) device->beforeRead(store_, transfer);
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

void Controller::between(const std::function<void(Store&)>& work) {
  const std::lock_guard lock(mutex_);
  for (const auto& device : devices_) device->refresh(store_);
  work(store_);
}

std::vector<Device*> Controller::devicesIn(const Transfer& transfer) const {
  std::vector<Device*> found;
  for (const auto& device : devices_) {
    if (anyByte(transfer, [&](Address at) { return device->covers(at); })) found.push_back(device.get());
  }
  return found;
}

}  // namespace velk::simulator
