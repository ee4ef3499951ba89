#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "values/bytes.h"

/// An output with the bytes that it is told, as people type them. What these do is the output's own business,
/// and so they are typed as numbers.
namespace velk::cli {

/// "Kitchen ceiling=255:2", "3=255:2".
struct TypedEntry {
  std::string output;  ///< a name or number; empty for what is no output's
  Bytes bytes;
};

/// None for a word that is no output in front of `count` numbers. Throws std::invalid_argument with a sentence
/// for numbers that are no bytes.
std::optional<TypedEntry> parseEntry(const std::string& typed, std::size_t count);

/// A number in a typed word. Throws std::invalid_argument with its range.
Byte numberIn(const std::string& typed, std::string_view text, const std::string& what, int first, int last);

/// "two" for 2, up to four.
std::string spelled(std::size_t count);

}  // namespace velk::cli
