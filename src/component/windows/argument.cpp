#include "component/windows/argument.h"

#include <array>
#include <charconv>
#include <cstring>
#include <utility>

#include "values/runtime_error.h"

namespace velk::com {
namespace {

/// How deep references to references may go.
constexpr int mostReferences = 4;

template <class Plain, class As>
void load(const void* data, Value& into) {
  into = static_cast<As>(*static_cast<const Plain*>(data));
}

void loadNothing(const void* /*data*/, Value& into) {
  into = {};
}

/// Through the shortest decimal text, so that 0.1 stays 0.1 in double precision.
void loadSingle(const void* data, Value& into) {
  std::array<char, 32> text{};
  const auto* const end = std::to_chars(text.begin(), text.end(), *static_cast<const float*>(data)).ptr;
  double number = 0;
  std::from_chars(text.begin(), end, number);
  into = number;
}

void loadCurrency(const void* data, Value& into) {
  constexpr double unit = 10000;
  into = static_cast<double>(static_cast<const CY*>(data)->int64) / unit;
}

void loadText(const void* data, Value& into) {
  into = bytesOf(*static_cast<const BSTR*>(data));
}

void loadTruth(const void* data, Value& into) {
  into = *static_cast<const VARIANT_BOOL*>(data) != VARIANT_FALSE;
}

void loadDecimal(const void* data, Value& into) {
  DECIMAL decimal = *static_cast<const DECIMAL*>(data);
  double number = 0;
  VarR8FromDec(&decimal, &number);
  into = number;
}

/// A variant that is cleared at the end.
struct OwnedVariant : VARIANT {
  OwnedVariant() : VARIANT{} {}
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;
  ~OwnedVariant() { VariantClear(this); }
};

/// The default property of an object, such as a field of a record set.
void loadObject(const void* data, Value& into) {
  auto* const object = *static_cast<IDispatch* const*>(data);
  OwnedVariant result;
  DISPPARAMS none{};
  if (object == nullptr ||
      FAILED(object->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &result,
                            nullptr, nullptr)) ||
      result.vt == VT_DISPATCH) {
    throw RuntimeError(RuntimeError::typeMismatch);
  }
  Argument(result).load(into);
}

/// One type of the automation variables.
struct Form {
  void (*load)(const void*, Value&) = nullptr;
  std::size_t size = 0;  ///< of a variable; 0 when results cannot be written there
};

using Forms = std::array<Form, VT_UINT + 1>;

constexpr Forms forms = [] {
  Forms f{};
  f[VT_EMPTY] = {loadNothing, 0};
  f[VT_I1] = {load<signed char, std::int32_t>, 1};
  f[VT_UI1] = {load<Byte, Byte>, 1};
  f[VT_I2] = {load<std::int16_t, std::int16_t>, 2};
  f[VT_UI2] = {load<std::uint16_t, std::int32_t>, 2};
  f[VT_I4] = {load<std::int32_t, std::int32_t>, 4};
  f[VT_UI4] = {load<std::uint32_t, double>, 4};
  f[VT_INT] = {load<std::int32_t, std::int32_t>, 4};
  f[VT_UINT] = {load<std::uint32_t, double>, 4};
  f[VT_I8] = {load<std::int64_t, double>, 8};
  f[VT_UI8] = {load<std::uint64_t, double>, 8};
  f[VT_R4] = {loadSingle, 4};
  f[VT_R8] = {load<double, double>, 8};
  f[VT_DATE] = {load<double, double>, 8};
  f[VT_CY] = {loadCurrency, 8};
  f[VT_DECIMAL] = {loadDecimal, sizeof(DECIMAL)};
  f[VT_BOOL] = {loadTruth, 2};
  f[VT_BSTR] = {loadText, sizeof(BSTR)};
  f[VT_DISPATCH] = {loadObject, 0};
  return f;
}();

const Form& formOf(VARTYPE type) {
  static constexpr Form unknown{};
  return type < forms.size() ? forms[type] : unknown;
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
    *static_cast<DECIMAL*>(variable) = from.decVal;
    static_cast<DECIMAL*>(variable)->wReserved = 0;
  } else {
    std::memcpy(variable, valueOf(from), formOf(from.vt).size);
  }
  from.vt = VT_EMPTY;
}

}  // namespace

VARIANT variantOf(const Value& value) {
  VARIANT variant{};
  std::visit(Cases{variant}, value);
  return variant;
}

Argument::Argument(VARIANT& passed) {
  VARIANT* variant = &passed;
  for (int i = 0; i < mostReferences && variant->vt == (VT_BYREF | VT_VARIANT); ++i) {
    variant = variable_ = variant->pvarVal;
    reference_ = true;
  }
  if ((variant->vt & VT_BYREF) != 0) {
    reference_ = true;
    variable_ = nullptr;
    type_ = static_cast<VARTYPE>(variant->vt & ~VT_BYREF);
    data_ = variant->byref;
  } else {
    type_ = variant->vt;
    data_ = valueOf(*variant);
  }
}

bool Argument::omitted() const {
  return type_ == VT_ERROR && data_ != nullptr && *static_cast<const SCODE*>(data_) == DISP_E_PARAMNOTFOUND;
}

void Argument::load(Value& into) const {
  const Form& form = formOf(type_);
  if (form.load == nullptr || data_ == nullptr) throw RuntimeError(RuntimeError::typeMismatch);
  form.load(data_, into);
}

HRESULT Argument::assign(const Value& value) const {
  if (!reference_) return S_OK;
  VARIANT result = variantOf(value);
  const HRESULT outcome = formOf(type_).size == 0 ? DISP_E_TYPEMISMATCH
                                                  : VariantChangeTypeEx(&result, &result, LOCALE_INVARIANT,
                                                                        VARIANT_ALPHABOOL, type_);
  if (variable_ != nullptr) {
    VariantClear(variable_);
    *variable_ = result;
    return S_OK;
  }
  if (SUCCEEDED(outcome)) {
    moveInto(data_, result);
  } else {
    VariantClear(&result);
  }
  return outcome;
}

}  // namespace velk::com
