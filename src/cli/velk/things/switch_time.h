#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/shared/json.h"
#include "cli/velk/things/details.h"
#include "cli/velk/things/output_names.h"
#include "component/serial.h"

namespace velk::cli {

constexpr int switchTimes = 128;

/// A switch-time block.
struct SwitchTime {
  Byte block = 0;
  Byte days = 0;  ///< bit 0 is Monday
  Byte hour = 0;
  Byte minute = 0;
  Bytes data;            ///< an action of two bytes, or entries of three
  bool readable = true;  ///< false for bytes that are no switch time
};

SwitchTime readSwitchTime(Serial& serial, Byte block);

bool isUsed(const SwitchTime& time);

/// "07:30".
std::string timeOf(const SwitchTime& time);

/// "switch time 3".
std::string titleOf(const SwitchTime& time);

/// What it switches, each by itself: an action of two bytes, or entries of three.
std::vector<Bytes> entriesOf(const SwitchTime& time);

/// One of them, or what an event switches, which looks the same.
Json jsonOfEntry(std::string_view entry, OutputNames& names);

/// "output 3 Kitchen ceiling: 255 2; output 7 Bedroom shutter: 0 4", "action 101.2".
std::string actionOf(const SwitchTime& time, OutputNames& names);

Json jsonOf(const SwitchTime& time, OutputNames& names);
Details detailsOf(const SwitchTime& time, OutputNames& names);

}  // namespace velk::cli
