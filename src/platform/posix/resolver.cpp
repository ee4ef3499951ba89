#include "platform/posix/resolver.h"

#include <netdb.h>
#include <sys/eventfd.h>

#include <atomic>
#include <cstring>
#include <deque>
#include <system_error>
#include <thread>

#include "values/runtime_error.h"

namespace velk::platform {

struct Lookup::Shared {
  Fd done;  ///< an eventfd; none when the answer was there at once
  std::deque<SocketAddress> addresses;
  std::atomic<bool> finished{false};
};

namespace {

/// The addresses of a host; `flags` as for getaddrinfo.
std::deque<SocketAddress> resolve(const std::string& host, std::uint16_t port, int flags) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = flags | AI_NUMERICSERV;
  addrinfo* list = nullptr;
  std::deque<SocketAddress> addresses;
  if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &list) != 0) return addresses;
  for (const addrinfo* entry = list; entry != nullptr; entry = entry->ai_next) {
    SocketAddress address{.storage = {}, .size = entry->ai_addrlen};
    std::memcpy(&address.storage, entry->ai_addr, entry->ai_addrlen);
    addresses.push_back(address);
  }
  freeaddrinfo(list);
  return addresses;
}

}  // namespace

Lookup::Lookup(const std::string& host, std::uint16_t port) : shared_(std::make_shared<Shared>()) {
  // An empty host or one with a zero byte inside is no name to ask for.
  const bool askable = !host.empty() && host.find('\0') == std::string::npos;
  if (askable) shared_->addresses = resolve(host, port, AI_NUMERICHOST);
  if (!shared_->addresses.empty() || !askable) {
    shared_->finished = true;
    return;
  }
  shared_->done = Fd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (!shared_->done) throw RuntimeError(RuntimeError::outOfMemory);
  try {
    std::thread([shared = shared_, host, port] {
      shared->addresses = resolve(host, port, 0);
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
