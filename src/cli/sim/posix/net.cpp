#include "cli/sim/net.h"

#include <netinet/tcp.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace velk::cli::net {
namespace {

void switchOn(Descriptor descriptor, int level, int option) {
  const int on = 1;
  setsockopt(descriptor, level, option, &on, sizeof on);
}

}  // namespace

bool wait(Descriptor descriptor, Readiness awaited, std::chrono::milliseconds longest) {
  pollfd watched{.fd = descriptor,
                 .events = static_cast<short>(awaited == Readiness::readable ? POLLIN : POLLOUT),
                 .revents = 0};
  return poll(&watched, 1, static_cast<int>(longest.count())) > 0;
}

void end(Descriptor descriptor) {
  shutdown(descriptor, SHUT_RDWR);
}

void close(Descriptor descriptor) {
  ::close(descriptor);
}

void start() {}

int lastError() {
  return errno;
}

void prepareListener(Descriptor descriptor) {
  switchOn(descriptor, SOL_SOCKET, SO_REUSEADDR);
}

void prepareStream(Descriptor descriptor) {
  switchOn(descriptor, IPPROTO_TCP, TCP_NODELAY);
}

}  // namespace velk::cli::net
