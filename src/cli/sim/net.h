#pragma once

#include <chrono>
#include <cstdint>

#include "net_types.h"  // the platform's own

/// What the socket interfaces of operating systems do differently.
namespace velk::cli::net {

enum class Readiness : std::uint8_t { readable, writable };

/// Whether the event, or the end of the connection, has come within the time. May return false
/// early where `readable` is awaited.
bool wait(Descriptor descriptor, Readiness awaited, std::chrono::milliseconds longest);

/// Ends a connection, or listening, and so other threads' waits for it, but for those that return early anyway.
void end(Descriptor descriptor);

void close(Descriptor descriptor);

/// Has to be called before any socket is made; may be called again.
void start();

/// The number of the last error, as std::system_category counts.
int lastError();

/// A listener may take a port that its last connections have not quite released; a stream sends small
/// packets at once and never ends the process.
void prepareListener(Descriptor descriptor);
void prepareStream(Descriptor descriptor);

}  // namespace velk::cli::net
