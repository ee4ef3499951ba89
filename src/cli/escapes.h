#pragma once

#include <string>
#include <string_view>

#include "values/bytes.h"

/// Byte strings as users write and read them: printable characters as they are, any other byte as "\xNN", a
/// backslash as "\\".
namespace velk::cli {

std::string escaped(std::string_view bytes);

/// Throws std::invalid_argument with a sentence when a backslash starts neither "\xNN" nor "\\".
Bytes unescaped(std::string_view text);

/// Byte strings in JSON: each character of the JSON text is one byte, U+0000 to U+00FF.
std::string utf8OfBytes(std::string_view bytes);

}  // namespace velk::cli
