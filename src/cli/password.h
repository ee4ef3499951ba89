#pragma once

#include <stdexcept>

#include "values/bytes.h"

namespace velk::cli {

/// What an interface takes; a longer password it would cut, and which part is meant is no guess of ours.
constexpr std::size_t passwordLength = 4;

/// The password, unless it is longer; throws std::invalid_argument then.
inline Bytes checkedPassword(Bytes password) {
  if (password.size() > passwordLength) throw std::invalid_argument("a password has at most four characters");
  return password;
}

}  // namespace velk::cli
