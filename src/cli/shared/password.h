#pragma once

#include <stdexcept>

#include "link/settings.h"
#include "values/bytes.h"

namespace velk::cli {

/// The password, unless it is longer than an interface takes; throws std::invalid_argument then: a longer one
/// would be cut, and which part is meant is no guess of ours.
inline Bytes checkedPassword(Bytes password) {
  if (password.size() > link::passwordLength)
    throw std::invalid_argument("a password has at most four characters");
  return password;
}

}  // namespace velk::cli
