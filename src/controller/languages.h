#pragma once

#include <array>
#include <string_view>

#include "values/bytes.h"

namespace velk::controller {

constexpr Byte firstText = 6;
constexpr Byte lastText = 34;
constexpr std::size_t textCount = lastText - firstText + 1;

/// The display texts of one language, for the slots 6 to 34.
using Texts = std::array<std::string_view, textCount>;

/// The texts for a language letter; none for a letter that is not known.
const Texts* textsOf(std::string_view language);

}  // namespace velk::controller
