#include "cli/things/fields.h"

#include "cli/transfer.h"

namespace velk::cli {

Bytes readMemory(Serial& serial, Byte count, int page, int offset) {
  const Transfer transfer{
      .count = count, .dph = static_cast<Byte>(page), .dpl = static_cast<Byte>(offset), .direction = "V"};
  return readTransfer(serial, transfer, "page " + std::to_string(page));
}

}  // namespace velk::cli
