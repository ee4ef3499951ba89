#pragma once

#include <string>

#include "cli/shared/json.h"
#include "component/serial.h"

namespace velk::cli {

/// The bytes of the initialisation block in front of and behind the clock.
struct Firmware {
  Bytes settings;    ///< three
  Bytes controller;  ///< two
  Byte kind;
  Bytes further;  ///< three
};

Firmware readFirmware(Serial& serial);

/// All but the settings: "controller 5 2, kind 4, further 1 2 3".
std::string textOf(const Firmware& firmware);

Json jsonOf(const Firmware& firmware);

}  // namespace velk::cli
