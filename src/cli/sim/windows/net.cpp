#include "cli/sim/net.h"

#include <algorithm>

namespace velk::cli::net {
namespace {

/// Nothing is promised to end a wait here: who waits for a client, or for what it sends, looks so often whether
/// to stop.
constexpr std::chrono::milliseconds stopInterval{100};

}  // namespace

bool wait(Descriptor descriptor, Readiness awaited, std::chrono::milliseconds longest) {
  fd_set watched;
  FD_ZERO(&watched);
  FD_SET(descriptor, &watched);
  if (awaited == Readiness::readable) longest = std::min(longest, stopInterval);
  const auto ms = static_cast<long>(longest.count());
  timeval limit{.tv_sec = ms / 1000, .tv_usec = ms % 1000 * 1000};
  fd_set* const reading = awaited == Readiness::readable ? &watched : nullptr;
  fd_set* const writing = awaited == Readiness::writable ? &watched : nullptr;
  return select(0, reading, writing, nullptr, &limit) > 0;
}

void end(Descriptor descriptor) {
  shutdown(descriptor, SD_BOTH);
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
