#pragma once

#include <cstdint>
#include <string_view>

namespace velk::cli {

/// CRC-32 as zip files and Ethernet have it: polynomial 0x04C11DB7, bits reversed, started with and combined
/// with ones. It tells every change of up to 32 neighbouring bits.
std::uint32_t crc32(std::string_view bytes);

}  // namespace velk::cli
