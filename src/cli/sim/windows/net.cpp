#include "cli/sim/net.h"

namespace velk::cli::net {

bool wait(Descriptor descriptor, Readiness awaited, std::chrono::milliseconds longest) {
  fd_set watched;
  FD_ZERO(&watched);
  FD_SET(descriptor, &watched);
  const auto ms = static_cast<long>(longest.count());
  timeval limit{.tv_sec = ms / 1000, .tv_usec = ms % 1000 * 1000};
  fd_set* const reading = awaited == Readiness::readable ? &watched : nullptr;
  fd_set* const writing = awaited == Readiness::writable ? &watched : nullptr;
  return select(0, reading, writing, nullptr, &limit) > 0;
}

void close(Descriptor descriptor) {
  closesocket(descriptor);
}

void start() {
  static const int result = [] {
    WSADATA data;
    return WSAStartup(MAKEWORD(2, 2), &data);
  }();
  static_cast<void>(result);
}

int lastError() {
  return WSAGetLastError();
}

/// Here a listener takes such a port without being told, and the option of that name would let others in.
void prepareListener(Descriptor /*descriptor*/) {}

void prepareStream(Descriptor descriptor) {
  const int on = 1;
  setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
}

}  // namespace velk::cli::net
