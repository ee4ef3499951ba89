#pragma once

#include <utility>

#include "com/text.h"
#include "values/value.h"

namespace velk::com {

/// A variant that is cleared at the end.
struct OwnedVariant : VARIANT {
  explicit OwnedVariant(VARIANT variant = {}) : VARIANT{variant} {}
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;
  ~OwnedVariant() {
    if (vt != VT_EMPTY) VariantClear(this);  // the system's call takes as long as a simple method
  }

  /// Leaves the value to the caller.
  VARIANT release() { return std::exchange(static_cast<VARIANT&>(*this), VARIANT{}); }
};

/// A value as automation hosts take it. The caller clears it.
VARIANT variantOf(const Value& value);

/// How a host passes an argument.
enum class Passing : Byte {
  nothing,   ///< a reference that leads nowhere
  value,     ///< as a value: nothing can be given back
  variable,  ///< as a reference to a variable of a fixed type
  variant,   ///< as a reference to a variant, as script hosts do with their variables
};

/// One argument as a host passes it.
class Argument {
 public:
  explicit Argument(VARIANT& passed);

  /// Whether the host left the argument out between others.
  [[nodiscard]] bool omitted() const;

  /// Whether results can be given back.
  [[nodiscard]] bool isReference() const {
    return passing_ == Passing::variable || passing_ == Passing::variant;
  }

  /// The caller's variable; the same one may be passed for several parameters.
  [[nodiscard]] const void* variable() const { return passing_ == Passing::variant ? variant_ : data_; }

  /// The type of the value, without its references.
  [[nodiscard]] VARTYPE type() const { return type_; }

  /// Fetches the value for a parameter of type `wanted`. Run-time error 13 (type mismatch) for a kind of
  /// value that no method takes, and for an array of bytes where no text is wanted; 6 (overflow) for no
  /// number (NaN).
  void load(Value& into, Type wanted) const;

  /// Writes a result into the caller's variable and in its type. A variant takes the result in the type
  /// `loaded`, which it had when the call began, or in the result's own where that cannot hold it: what it
  /// holds by now may be another result of the same call. Does nothing for one passed by value.
  /// Returns S_OK, DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW, DISP_E_ARRAYISLOCKED or E_OUTOFMEMORY.
  [[nodiscard]] HRESULT assign(const Value& value, VARTYPE loaded) const noexcept;

 private:
  [[nodiscard]] HRESULT assignVariant(const Value& value, VARTYPE loaded) const;
  [[nodiscard]] HRESULT assignVariable(const Value& value) const;

  Passing passing_ = Passing::nothing;
  VARTYPE type_ = VT_EMPTY;
  VARIANT* variant_ = nullptr;  ///< behind all references to variants
  void* data_ = nullptr;        ///< the value
};

}  // namespace velk::com
