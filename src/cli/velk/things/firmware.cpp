#include "cli/velk/things/firmware.h"

#include "cli/velk/connection/retry.h"
#include "cli/velk/things/words.h"

namespace velk::cli {

Firmware readFirmware(Serial& serial) {
  constexpr Byte clockEnd = 13;
  Bytes head;
  Bytes further;
  const auto read = [&](Bytes& part, Byte count, Byte offset) {
    expectRead([&] { return serial.Ctl_Init("R", part, count, offset); }, "reading the initialisation block");
  };
  read(head, 6, 0);
  read(further, 3, clockEnd);
  return {.settings = head.substr(0, 3),
          .controller = head.substr(3, 2),
          .kind = byteAt(head, 5),
          .further = further};
}

std::string textOf(const Firmware& firmware) {
  return "controller " + numbers(firmware.controller) + ", kind " + std::to_string(firmware.kind) +
         ", further " + numbers(firmware.further);
}

Json jsonOf(const Firmware& firmware) {
  return {{"settings", jsonOfBytes(firmware.settings)},
          {"controller", jsonOfBytes(firmware.controller)},
          {"kind", firmware.kind},
          {"further", jsonOfBytes(firmware.further)}};
}

}  // namespace velk::cli
