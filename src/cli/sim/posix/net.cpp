#include "cli/sim/net.h"

#include <netinet/tcp.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace velk::cli::net {
namespace {

void switchOn(Handle handle, int level, int option) {
  const int on = 1;
  setsockopt(handle, level, option, &on, sizeof on);
}

}  // namespace

bool wait(Handle handle, Event event, std::chrono::milliseconds longest) {
  pollfd watched{
      .fd = handle, .events = static_cast<short>(event == Event::readable ? POLLIN : POLLOUT), .revents = 0};
  return poll(&watched, 1, static_cast<int>(longest.count())) > 0;
}

void close(Handle handle) {
  ::close(handle);
}

void start() {}

int lastError() {
  return errno;
}

void prepareListener(Handle handle) {
  switchOn(handle, SOL_SOCKET, SO_REUSEADDR);
}

void prepareStream(Handle handle) {
  switchOn(handle, IPPROTO_TCP, TCP_NODELAY);
}

}  // namespace velk::cli::net
