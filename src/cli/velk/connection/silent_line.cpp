#include "cli/velk/connection/silent_line.h"

#include "cli/velk/connection/retry.h"
#include "controller/ctl_init.h"

namespace velk::cli {
namespace {

/// Whether a read of one byte comes back, with whatever status.
bool answers(platform::Host& host, Byte busAddress, bool fast) {
  // An object of its own: its first request goes out behind a line break, which ends what the interface may
  // wait for after requests of the other mode.
  Serial serial(host);
  serial.NoEcho = fast;
  serial.SerAddress = busAddress;
  const Bytes reply = serial.ReadCom(1, controller::firstSetting.high(), controller::firstSetting.low(), "V");
  return !reply.empty() && !isLost(byteValue(reply.front()));
}

}  // namespace

std::string whySilent(const LinkOptions& link, platform::Host& host) {
  if (answers(host, link.busAddress, !link.fast)) {
    return link.fast ? "the line is in echo mode; leave out --fast (in a link text: \"fast\")"
                     : "the line is in fast mode; give --fast (in a link text: \"?fast\")";
  }
  if (answers(host, link.busAddress, link.fast)) return {};
  return "nobody answers; check cable and power, and whether --baud and --address fit";
}

}  // namespace velk::cli
