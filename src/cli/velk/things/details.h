#pragma once

#include <string>
#include <vector>

#include "cli/shared/failure.h"
#include "component/serial.h"
#include "link/address.h"

namespace velk::cli {

/// One detail of a thing, as people read it.
struct Detail {
  std::string name;
  std::string text;

  friend bool operator==(const Detail&, const Detail&) = default;
};

using Details = std::vector<Detail>;

/// Up to 16 bytes of the controller's memory. Throws `Failure` with the status of a transaction that fails.
Bytes readMemory(Serial& serial, link::Address at, std::size_t count);

}  // namespace velk::cli
