#pragma once

#include <string>
#include <string_view>

#include "values/bytes.h"

/// Byte strings as users write and read them. Outside they are UTF-8, inside one byte a character: U+0000 to
/// U+00FF is the byte of that value (Latin-1), on every system; "\xNN" is a byte, "\\" a backslash.
namespace velk::cli {

/// Data: printable ASCII characters as they are, any other byte as "\xNN", a backslash as "\\".
std::string escaped(std::string_view bytes);

/// Names and other texts: bytes from 160 on as their characters too.
std::string shown(std::string_view bytes);

/// The bytes of a text that somebody typed. Throws std::invalid_argument with a sentence when it is no UTF-8
/// or has a character that is no byte.
Bytes bytesOfUtf8(std::string_view text);

/// The same with escapes. Throws likewise when a backslash starts neither "\xNN" nor "\\".
Bytes unescaped(std::string_view typed);

/// Byte strings in JSON: each character of the JSON text is one byte, U+0000 to U+00FF.
std::string utf8OfBytes(std::string_view bytes);

}  // namespace velk::cli
