#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/velk/things/output_names.h"

/// What a switch time switches, as people type it. What the two bytes of an entry do is the output's own
/// business, and so they are typed as numbers.
namespace velk::cli {

/// Something to switch: "Kitchen ceiling=255:2", "3=255:2" and "3:255:2", or an action, "101.2".
struct TypedEntry {
  std::string output;  ///< a name or number; empty for an action
  Bytes bytes;         ///< those behind the output; all two of an action
};

/// Throws std::invalid_argument with a sentence that tells the range, or how such a thing is written.
TypedEntry parseEntry(const std::string& typed);

/// The bytes of a switch-time block for typed entries. Throws likewise for a name that no output has, or
/// several.
Bytes dataOf(const std::vector<TypedEntry>& entries, OutputNames& names);

/// Throws std::invalid_argument with a sentence for bytes that cannot be written to a block: too many, an
/// entry of an output below 3, entries and an action together.
void checkData(Byte block, std::string_view data);

}  // namespace velk::cli
