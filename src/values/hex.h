#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "values/bytes.h"

/// Bytes as hexadecimal digits, two a byte.
namespace velk {

/// "0aff".
std::string hex(std::string_view bytes);

/// "0000ffff".
std::string hex(std::uint32_t number);

/// "0AFF", or "0A FF" with a blank as the gap.
std::string capitalHex(std::string_view bytes, std::string_view gap = {});

/// The byte of two digits, with small or capital letters; none for any other text.
std::optional<Byte> byteOfHex(std::string_view digits);

/// The bytes of pairs of them. Throws std::invalid_argument with a sentence.
Bytes bytesOfHex(std::string_view digits);

}  // namespace velk
