#pragma once

#include <string>

#include "component/serial.h"

namespace velk::cli {

/// Bytes of the controller's memory, as the link addresses them.
struct Transfer {
  Byte count;  ///< 1 to 16, in the high bank of the block area 128 more
  Byte dph;
  Byte dpl;
  const char* direction;  ///< "V" the external memory, "H" the block area

  /// How many bytes it moves.
  [[nodiscard]] std::size_t size() const {
    constexpr Byte highBank = 128;
    return count % highBank;
  }
};

/// Reads them; what is lost on the way is asked again (see `Retry`). Throws `Failure` that names `what`.
Bytes readTransfer(Serial& serial, const Transfer& transfer, const std::string& what);

/// Writes them, likewise.
void writeTransfer(Serial& serial, const Transfer& transfer, const Bytes& bytes, const std::string& what);

}  // namespace velk::cli
