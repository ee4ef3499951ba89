#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/velk/things/output_names.h"
#include "cli/velk/things/typed_entry.h"

/// What a switch time switches, as people type it.
namespace velk::cli {

/// Something to switch: an entry of an output, or an action, "101.2", which has no output. Throws
/// std::invalid_argument with a sentence that tells the range, or how such a thing is written.
TypedEntry parseSwitchEntry(const std::string& typed);

/// The bytes of a switch-time block for typed entries. Throws likewise for a name that no output has, or
/// several.
Bytes dataOf(const std::vector<TypedEntry>& entries, OutputNames& names);

/// Throws std::invalid_argument with a sentence for bytes that cannot be written to a block: too many, an
/// entry of an output below 3, entries and an action together.
void checkData(Byte block, std::string_view data);

}  // namespace velk::cli
