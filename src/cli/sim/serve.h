#pragma once

#include <stop_token>

#include "cli/shared/stream.h"
#include "simulator/peer.h"

namespace velk::cli {

/// Lets a peer talk over a stream until either side hangs up or a stop is requested. What the peer delivers
/// with a delay is sent at its time.
void serve(Stream& stream, simulator::Peer& peer, const std::stop_token& stop);

/// How long a thread waits for anything: until it is woken.
constexpr std::chrono::milliseconds longestWait = std::chrono::hours(1);

}  // namespace velk::cli
