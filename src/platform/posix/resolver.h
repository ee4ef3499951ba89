#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/addresses.h"
#include "platform/posix/fd.h"

namespace velk::platform {

/// Looks up a host name without blocking: addresses given as digits are there at once, names are asked for on
/// a thread of their own that outlives the lookup if it has to.
class Lookup {
 public:
  /// Error 7 when the system has nothing left to ask with.
  Lookup(const std::string& host, std::uint16_t port);

  /// Readable once the lookup has ended; -1 when it was there at once.
  [[nodiscard]] int descriptor() const;

  [[nodiscard]] bool finished() const;

  /// The next of the addresses found, in the order of preference; none for an unknown name.
  std::optional<SocketAddress> next();

 private:
  struct Shared;
  std::shared_ptr<Shared> shared_;
};

}  // namespace velk::platform
