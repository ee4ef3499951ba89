#pragma once

#include <span>
#include <string>
#include <string_view>

#include "cli/house/lines.h"
#include "cli/velk/things/details.h"
#include "component/serial.h"

namespace velk::cli {

/// The names that `--only` takes: "outputs", "links" and so on; "modules" is the last.
std::span<const std::string_view> sections();

std::string_view sectionOf(ThingKind kind);

/// "output 5", "simulation of Monday 18:00".
std::string titleOf(Thing thing);

/// What a thing is set to. Throws `Failure` for bytes that are no such thing.
Details describe(Serial& serial, Thing thing);

}  // namespace velk::cli
