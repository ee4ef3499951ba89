#pragma once

#include "link/link.h"
#include "link/tcp_frames.h"
#include "link/wait.h"

namespace velk::link {

/// What the socket has received once anything is there; empty when nothing comes in time or the connection
/// ends. One fetch and no more: a reply that comes in pieces is not put together.
std::string_view fetchWithin(platform::Host& host, Seconds longest);

/// One request and its reply over the socket, for the interface kind that the settings tell. Returns what the
/// reply carries, or one byte: 252 no reply, 254 a foreign or inconsistent header, or the result byte of a
/// run-time error of the socket.
Bytes tranceivTcp(Link link, const TcpRequest& request);

}  // namespace velk::link
