#include "platform/posix/resolver.h"

#include <sys/eventfd.h>

#include <atomic>
#include <system_error>
#include <thread>

#include "values/runtime_error.h"

namespace velk::platform {

struct Lookup::Shared {
  Fd done;  ///< an eventfd; none when the answer was there at once
  std::deque<SocketAddress> addresses;
  std::atomic<bool> finished{false};
};

Lookup::Lookup(const std::string& host, std::uint16_t port) : shared_(std::make_shared<Shared>()) {
  const bool askable = isAskable(host);
  if (askable) shared_->addresses = addressesOf(host, port, AI_NUMERICHOST | AI_NUMERICSERV);
  if (!shared_->addresses.empty() || !askable) {
    shared_->finished = true;
    return;
  }
  shared_->done = Fd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (!shared_->done) throw RuntimeError(RuntimeError::outOfMemory);
  try {
    std::thread([shared = shared_, host, port] {
      shared->addresses = addressesOf(host, port, AI_NUMERICSERV);
      shared->finished = true;
      eventfd_write(shared->done.get(), 1);
    }).detach();
  } catch (const std::system_error&) {
    throw RuntimeError(RuntimeError::outOfMemory);  // no thread to be had
  }
}

int Lookup::descriptor() const {
  return shared_->done.get();
}

bool Lookup::finished() const {
  return shared_->finished;
}

std::optional<SocketAddress> Lookup::next() {
  if (shared_->addresses.empty()) return std::nullopt;
  std::optional address(shared_->addresses.front());
  shared_->addresses.pop_front();
  return address;
}

}  // namespace velk::platform
