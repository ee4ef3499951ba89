#pragma once

#include <sys/types.h>

#include <algorithm>
#include <cstddef>

#include "values/bytes.h"

namespace velk::platform {

/// The system hands out what has come in pieces of at most this size.
inline constexpr std::size_t pieceSize = 4096;

/// A first piece from this size on may be the start of a backlog. No reply is as long.
inline constexpr std::size_t longPiece = 1024;

/// Nothing is asked for beyond this: a device that never stops sending must not hold a call for ever.
inline constexpr std::size_t mostTaken = 65536;

/// Takes all that has come: one piece, and behind a long one all others, of whatever size, until there is
/// nothing more. The pieces of a backlog are of any size (4095, 1 and 1904 bytes of 6000): where the system
/// keeps them in a ring, its end cuts one in two.
///
/// `readPiece(place, size)` reads without blocking, as `read` does. Returns its first result when that is no
/// piece, else the number of bytes that stand at the start of `buffer`.
template <class ReadPiece>
ssize_t takeAll(Bytes& buffer, ReadPiece readPiece) {
  std::size_t held = 0;
  for (;;) {
    buffer.resize(std::max(buffer.size(), held + pieceSize));
    const ssize_t piece = readPiece(buffer.data() + held, pieceSize);
    if (held == 0 && piece < static_cast<ssize_t>(longPiece)) return piece;
    if (piece <= 0) break;
    held += static_cast<std::size_t>(piece);
    if (held >= mostTaken) break;
  }
  return static_cast<ssize_t>(held);
}

}  // namespace velk::platform
