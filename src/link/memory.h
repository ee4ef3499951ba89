#pragma once

#include <string_view>

#include "link/link.h"
#include "values/bytes.h"

namespace velk::link {

/// Ends a method at its first failed transaction; carries the method's result. Caught once, in `Serial`.
struct Stop {
  Byte result;
};

/// Where bytes lie in the controller.
struct Address {
  Byte dph;  ///< high byte
  Byte dpl;  ///< low byte
};

/// The two areas that a direction letter selects. In the external area the bytes of one transfer lie at
/// successive addresses; in the block area at successive high address bytes, the low byte being the page.
enum class Area : char { external = 'V', block = 'H' };

/// The controller's memory behind the link: reads and writes with three attempts that throw `Stop` with the
/// status of a transaction that fails. An empty reply is run-time error 5.
class Memory {
 public:
  explicit Memory(Link link) : link_(link) {}

  /// Reads `count` data bytes (as `readCom` takes it: 144 for 16 bytes of the high bank).
  [[nodiscard]] Bytes read(Byte count, Address at, Area area = Area::external) const;

  /// Writes `data`, whose length is the count.
  void write(Address at, std::string_view data, Area area = Area::external) const;

  /// Writes with a count of its own.
  void write(Byte count, Address at, std::string_view data, Area area) const;

  /// The same read, with its status byte in front and without `Stop`.
  [[nodiscard]] Bytes tryRead(Byte count, Address at, Area area = Area::external) const;

 private:
  Link link_;
};

}  // namespace velk::link
