#pragma once

#include <string_view>

namespace velk::link {

/// Whether a configuration method's `ReadOrWrite` text asks for a read: exactly "R" does. Any other text that
/// occurs inside "RW" asks for a write: "W", "RW" and the empty text. Anything else ends the method with 101.
bool isRead(std::string_view readOrWrite);

}  // namespace velk::link
