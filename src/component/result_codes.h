#pragma once

#include <span>
#include <string>
#include <string_view>

#include "values/bytes.h"
#include "values/result.h"

namespace velk {

struct Method;

/// A result byte and what it says to a user.
struct ResultCode {
  Byte code;
  std::string_view meaning;
};

/// The codes with a meaning of their own, in ascending order. Any other byte is a status of the controller's.
std::span<const ResultCode> resultCodes();

/// What a result byte says: "done", "no reply, or one of a wrong length", "status 7 of the controller".
std::string meaningOf(Byte code);

/// What the result of a method is.
enum class ResultKind : Byte {
  code,   ///< a result byte
  reply,  ///< a byte string that starts with a status; a link error is its only byte
  value,  ///< what was asked for: a conversion, an address, a property
};

ResultKind resultKindOf(const Method& method);

}  // namespace velk
