#pragma once

#include "component/windows/text.h"
#include "values/value.h"

namespace velk::com {

/// A value as automation hosts take it. The caller clears it.
VARIANT variantOf(const Value& value);

/// One argument as a host passes it: a value, a reference to a variable of a fixed type, or a reference to a
/// variant, which script hosts pass for their variables.
class Argument {
 public:
  explicit Argument(VARIANT& passed);

  /// Whether the host left the argument out between others.
  [[nodiscard]] bool omitted() const;

  /// Fetches the value. Run-time error 13 (type mismatch) for a kind of value that no method takes.
  void load(Value& into) const;

  /// Writes a result into the caller's variable and in its type; a variant that cannot hold the value in its
  /// present type takes the value's. Nothing happens to an argument passed by value. Returns S_OK,
  /// DISP_E_TYPEMISMATCH or DISP_E_OVERFLOW.
  [[nodiscard]] HRESULT assign(const Value& value) const;

 private:
  VARTYPE type_ = VT_EMPTY;
  void* data_ = nullptr;
  VARIANT* variable_ = nullptr;  ///< the variant referred to, if any
  bool reference_ = false;
};

}  // namespace velk::com
