#pragma once

#include <charconv>
#include <concepts>
#include <optional>
#include <string_view>

namespace velk {

/// The number that a text spells in digits, behind "-" where T has negative numbers; none for any other text,
/// or a number that is none of T's.
template <std::integral T>
std::optional<T> wholeNumber(std::string_view text, int base = 10) {
  T number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

}  // namespace velk
