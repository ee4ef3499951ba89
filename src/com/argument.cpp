#include "com/argument.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "com/byte_array.h"
#include "values/runtime_error.h"

namespace velk::com {
namespace {

/// No number (NaN) is seen by its bits: a host may have floating-point exceptions on, and then comparing or
/// even loading it ends the host.
template <class Bits, class Number>
void refuseNan(const void* data) {
  constexpr Bits infinity = std::bit_cast<Bits>(std::numeric_limits<Number>::infinity());
  Bits bits = 0;
  std::memcpy(&bits, data, sizeof bits);
  constexpr Bits sign = Bits{1} << (8 * sizeof(Bits) - 1);
  if ((bits & ~sign) > infinity) throw RuntimeError(RuntimeError::overflow);
}

template <class Plain, class As>
void load(const void* data, Type /*wanted*/, Value& into) {
  into = static_cast<As>(*static_cast<const Plain*>(data));
}

void loadNothing(const void* /*data*/, Type /*wanted*/, Value& into) {
  into = {};
}

/// Through the shortest decimal text, so that 0.1 stays 0.1 in double precision.
void loadSingle(const void* data, Type /*wanted*/, Value& into) {
  refuseNan<std::uint32_t, float>(data);
  std::array<char, 32> text{};
  const auto* const end = std::to_chars(text.begin(), text.end(), *static_cast<const float*>(data)).ptr;
  double number = 0;
  std::from_chars(text.begin(), end, number);
  into = number;
}

void loadDouble(const void* data, Type /*wanted*/, Value& into) {
  refuseNan<std::uint64_t, double>(data);
  into = *static_cast<const double*>(data);
}

void loadCurrency(const void* data, Type /*wanted*/, Value& into) {
  constexpr double unit = 10000;
  into = static_cast<double>(static_cast<const CY*>(data)->int64) / unit;
}

void loadText(const void* data, Type /*wanted*/, Value& into) {
  into = bytesOf(*static_cast<const BSTR*>(data));
}

void loadTruth(const void* data, Type /*wanted*/, Value& into) {
  into = *static_cast<const VARIANT_BOOL*>(data) != VARIANT_FALSE;
}

void loadDecimal(const void* data, Type /*wanted*/, Value& into) {
  DECIMAL decimal = *static_cast<const DECIMAL*>(data);
  double number = 0;
  VarR8FromDec(&decimal, &number);
  into = number;
}

void loadBytes(const void* data, Type wanted, Value& into) {
  if (wanted != Type::text) throw RuntimeError(RuntimeError::typeMismatch);
  into = bytesOf(*static_cast<SAFEARRAY* const*>(data));
}

/// The default property of an object, such as a field of a record set.
void loadObject(const void* data, Type wanted, Value& into) {
  auto* const object = *static_cast<IDispatch* const*>(data);
  OwnedVariant result;
  DISPPARAMS none{};
  if (object == nullptr ||
      FAILED(object->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &result,
                            nullptr, nullptr)) ||
      result.vt == VT_DISPATCH) {
    throw RuntimeError(RuntimeError::typeMismatch);
  }
  Argument(result).load(into, wanted);
}

/// One type of the automation variables.
struct VariableType {
  void (*load)(const void*, Type, Value&) = nullptr;
  std::size_t size = 0;  ///< of a variable; 0 when no number or text can be written there
};

constexpr auto variableTypes = [] {
  std::array<VariableType, VT_UINT + 1> rows{};
  rows[VT_EMPTY] = {loadNothing, 0};
  rows[VT_I1] = {load<signed char, std::int32_t>, 1};
  rows[VT_UI1] = {load<Byte, Byte>, 1};
  rows[VT_I2] = {load<std::int16_t, std::int16_t>, 2};
  rows[VT_UI2] = {load<std::uint16_t, std::int32_t>, 2};
  rows[VT_I4] = {load<std::int32_t, std::int32_t>, 4};
  rows[VT_UI4] = {load<std::uint32_t, double>, 4};
  rows[VT_INT] = {load<std::int32_t, std::int32_t>, 4};
  rows[VT_UINT] = {load<std::uint32_t, double>, 4};
  rows[VT_I8] = {load<std::int64_t, double>, 8};
  rows[VT_UI8] = {load<std::uint64_t, double>, 8};
  rows[VT_R4] = {loadSingle, 4};
  rows[VT_R8] = {loadDouble, 8};
  rows[VT_DATE] = {loadDouble, 8};
  rows[VT_CY] = {loadCurrency, 8};
  rows[VT_DECIMAL] = {loadDecimal, sizeof(DECIMAL)};
  rows[VT_BOOL] = {loadTruth, 2};
  rows[VT_BSTR] = {loadText, sizeof(BSTR)};
  rows[VT_DISPATCH] = {loadObject, 0};
  return rows;
}();

const VariableType& variableTypeOf(VARTYPE type) {
  static constexpr VariableType unknown{};
  static constexpr VariableType bytes{loadBytes, 0};
  if (type == byteArray) return bytes;
  return type < variableTypes.size() ? variableTypes[type] : unknown;
}

/// What stands behind references to variants; null where one of them leads nowhere.
VARIANT* referredTo(VARIANT* variant) {
  constexpr int mostReferences = 4;
  for (int i = 0; i < mostReferences && variant != nullptr && variant->vt == (VT_BYREF | VT_VARIANT); ++i) {
    variant = variant->pvarVal;
  }
  return variant;
}

/// Where a variant keeps its value.
void* valueOf(VARIANT& variant) {
  // The decimal is the one type that fills the whole variant, its type tag included.
  if (variant.vt == VT_DECIMAL) return &variant.decVal;
  return &variant.byref;
}

struct Cases {
  VARIANT& v;

  void operator()(std::monostate /*unused*/) const { v.vt = VT_EMPTY; }
  void operator()(bool truth) const {
    v.vt = VT_BOOL;
    v.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
  }
  void operator()(Byte number) const {
    v.vt = VT_UI1;
    v.bVal = number;
  }
  void operator()(std::int16_t number) const {
    v.vt = VT_I2;
    v.iVal = number;
  }
  void operator()(std::int32_t number) const {
    v.vt = VT_I4;
    v.lVal = number;
  }
  void operator()(double number) const {
    v.vt = VT_R8;
    v.dblVal = number;
  }
  void operator()(const std::string& text) const {
    v.bstrVal = newText(text);
    v.vt = VT_BSTR;
  }
};

/// Moves the value of a variant into a variable of its type.
void moveInto(void* variable, VARIANT& from) {
  if (from.vt == VT_BSTR) SysFreeString(*static_cast<BSTR*>(variable));
  if (from.vt == VT_DECIMAL) {
    // The reserved word is the caller's: in a variable that is a variant's value, it is the variant's type.
    auto& decimal = *static_cast<DECIMAL*>(variable);
    from.decVal.wReserved = decimal.wReserved;
    decimal = from.decVal;
  } else {
    std::memcpy(variable, valueOf(from), variableTypeOf(from.vt).size);
  }
  from.vt = VT_EMPTY;
}

bool holdsLockedArray(const VARIANT& variant) {
  return (variant.vt & VT_ARRAY) != 0 && variant.parray != nullptr && variant.parray->cLocks != 0;
}

/// Puts a value into an empty variant: in the given type where that can hold it, else in the value's own.
HRESULT makeResult(const Value& value, VARTYPE type, VARIANT& result) {
  const auto* const bytes = std::get_if<Bytes>(&value);
  if (type == byteArray && bytes != nullptr) {
    result.vt = byteArray;
    result.parray = nullptr;
    return storeBytes(*bytes, result.parray);
  }
  result = variantOf(value);
  if (result.vt == type) return S_OK;
  if (variableTypeOf(type).size == 0) return DISP_E_TYPEMISMATCH;
  const HRESULT outcome = VariantChangeTypeEx(&result, &result, LOCALE_INVARIANT, VARIANT_ALPHABOOL, type);
  if (FAILED(outcome)) {
    // Nothing is said about what a conversion that fails leaves behind.
    VariantClear(&result);
    result = variantOf(value);
  }
  return outcome;
}

}  // namespace

VARIANT variantOf(const Value& value) {
  VARIANT variant{};
  std::visit(Cases{variant}, value);
  return variant;
}

Argument::Argument(VARIANT& passed) : variant_(referredTo(&passed)) {
  if (variant_ == nullptr) return;
  const bool isReference = (variant_->vt & VT_BYREF) != 0;
  type_ = static_cast<VARTYPE>(variant_->vt & ~VT_BYREF);
  data_ = isReference ? variant_->byref : valueOf(*variant_);
  if (data_ == nullptr) return;
  passing_ = isReference ? Passing::variable : variant_ == &passed ? Passing::value : Passing::variant;
}

bool Argument::omitted() const {
  return type_ == VT_ERROR && data_ != nullptr && *static_cast<const SCODE*>(data_) == DISP_E_PARAMNOTFOUND;
}

void Argument::load(Value& into, Type wanted) const {
  const VariableType& row = variableTypeOf(type_);
  if (passing_ == Passing::nothing || row.load == nullptr) throw RuntimeError(RuntimeError::typeMismatch);
  row.load(data_, wanted, into);
}

HRESULT Argument::assign(const Value& value, VARTYPE loaded) const noexcept {
  try {
    if (passing_ == Passing::variable) return assignVariable(value);
    if (passing_ == Passing::variant) return assignVariant(value, loaded);
    return S_OK;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

HRESULT Argument::assignVariant(const Value& value, VARTYPE loaded) const {
  OwnedVariant result;
  // A type that cannot hold the value is no fault here, for the variant takes any.
  if (makeResult(value, loaded, result) == E_OUTOFMEMORY) return E_OUTOFMEMORY;
  if (holdsLockedArray(*variant_)) return DISP_E_ARRAYISLOCKED;
  // What was there is cleared last: that may run code of the host, which then finds the result.
  std::swap(*variant_, static_cast<VARIANT&>(result));
  return S_OK;
}

HRESULT Argument::assignVariable(const Value& value) const {
  const auto* const bytes = std::get_if<Bytes>(&value);
  if (type_ == byteArray && bytes != nullptr) return storeBytes(*bytes, *static_cast<SAFEARRAY**>(data_));
  OwnedVariant result;
  const HRESULT outcome = makeResult(value, type_, result);
  if (SUCCEEDED(outcome)) moveInto(data_, result);
  return outcome;
}

}  // namespace velk::com
