#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velk::cli {

/// The words that somebody may have meant who typed another one: those with the fewest slips, or the only one
/// that begins so. Empty when none is near, or too many are.
std::vector<std::string> nearest(std::string_view typed, std::span<const std::string> words);

/// "; did you mean "outputs"?" to put behind a sentence; `otherwise` when no word is near.
std::string didYouMean(std::string_view typed, std::span<const std::string> words,
                       const std::string& otherwise = {});

}  // namespace velk::cli
