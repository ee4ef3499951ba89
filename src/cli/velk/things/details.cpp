#include "cli/velk/things/details.h"

#include "cli/velk/connection/transfer.h"

namespace velk::cli {

Bytes readMemory(Serial& serial, link::Address at, std::size_t count) {
  return readTransfer(serial, at, count, "page " + std::to_string(at.page));
}

}  // namespace velk::cli
