#pragma once

#include <string_view>

#include "link/address.h"
#include "link/link.h"
#include "values/bytes.h"

namespace velk::link {

/// Ends a method at its first failed transaction; carries the method's result, which may be a transaction's
/// status. Caught once, in `Serial`.
struct Stop {
  Result result;
};

/// The controller's memory behind the link: reads and writes that throw `Stop` with the status of a
/// transaction that fails. An empty reply is run-time error 5.
class Memory {
 public:
  explicit Memory(Link link) : link_(link) {}

  /// Reads `count` bytes, 1 to 16; see `commandByte` for others.
  [[nodiscard]] Bytes read(Byte count, Address at) const;

  /// Writes `data`, whose length is the count.
  void write(Address at, std::string_view data) const;

  /// The same read, with its status byte in front and without `Stop`.
  [[nodiscard]] Bytes tryRead(Byte count, Address at) const;

 private:
  Link link_;
};

}  // namespace velk::link
