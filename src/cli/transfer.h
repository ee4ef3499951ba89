#pragma once

#include <string>

#include "component/serial.h"

namespace velk::cli {

/// Bytes of the controller's memory, as the link addresses them.
struct Transfer {
  /// What the count has more in the high bank of the block area.
  static constexpr Byte highBank = 128;

  Byte count;  ///< 1 to 16, and `highBank`
  Byte dph;
  Byte dpl;
  const char* direction;  ///< "V" the external memory, "H" the block area

  /// How many bytes it moves.
  [[nodiscard]] std::size_t size() const { return count % highBank; }
};

/// Reads them; what is lost on the way is asked again (see `Retry`). Throws `Failure` that names `what`.
Bytes readTransfer(Serial& serial, const Transfer& transfer, const std::string& what);

/// Writes them, likewise.
void writeTransfer(Serial& serial, const Transfer& transfer, const Bytes& bytes, const std::string& what);

}  // namespace velk::cli
