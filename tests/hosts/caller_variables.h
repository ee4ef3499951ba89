#pragma once

#include <array>
#include <cstring>

#include "com/byte_array.h"
#include "values/value.h"

/// A caller's variables: of every type, what a method has to get from each, and what each has to hold behind it.
namespace velk::com {

/// Stand for a value in the table of samples.
enum Fault : int { over = 100'000, none };

/// What a variant has to be to a method: the rows are those of variants.inc.
struct Sample {
  VARTYPE type;
  const wchar_t* made;       ///< the text that the system makes the value from
  int truth, byte, integer;  ///< or a `Fault`
  const char* text;          ///< none: no method takes such a variant, and `truth` is its fault
};

inline constexpr const wchar_t* omitted = L"left out";
inline constexpr const wchar_t* noNumber = L"NaN";
inline constexpr const wchar_t* infinite = L"infinity";
inline constexpr const wchar_t* square = L"two dimensions";
inline constexpr Sample samples[] = {
#include "variants.inc"
};

/// A variant that the system makes from a text; what cannot be made is empty.
inline VARIANT made(VARTYPE type, const std::wstring& text) {
  VARIANT variant{};
  variant.vt = VT_BSTR;
  variant.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  // Dates as numbers of days.
  VariantChangeTypeEx(&variant, &variant, LOCALE_INVARIANT, 0, type == VT_DATE ? VARTYPE{VT_R8} : type);
  variant.vt = type;
  return variant;
}

/// The type and the content of a variant, read without the component.
inline std::string shown(const VARIANT& variant) {
  const std::string type = std::to_string(variant.vt) + ":";
  if (variant.vt == byteArray && variant.parray != nullptr) {
    const SAFEARRAYBOUND& bound = variant.parray->rgsabound[0];
    return type + std::string(static_cast<const char*>(variant.parray->pvData), bound.cElements) + "@" +
           std::to_string(bound.lLbound);
  }
  VARIANT number = variant;
  if (number.vt == VT_DATE) number.vt = VT_R8;
  VARIANT text{};
  VariantChangeTypeEx(&text, &number, LOCALE_INVARIANT, 0, VT_BSTR);  // what has no text stays empty
  std::string content;
  for (UINT i = 0; i < SysStringLen(text.bstrVal); ++i) content += static_cast<char>(text.bstrVal[i]);
  VariantClear(&text);
  return type + content;
}

/// A variable of the caller's. `choice` is what it has at random.
struct Cell {
  Cell(const Sample& made, unsigned choice) : sample(&made), choice(choice) {
    make();
    value.vt = made.type;
    expected = shown(value);
    if (isPlainDecimal()) value.decVal.wReserved = reserved;
    before = value;
  }
  Cell(const Cell&) = delete;
  Cell& operator=(const Cell&) = delete;
  ~Cell() {
    if (is(fixed) && value.parray != nullptr) value.parray->fFeatures &= ~(FADF_FIXEDSIZE | FADF_STATIC);
    if (is(locked)) SafeArrayUnlock(value.parray);
    VariantClear(&value);
  }

  void make() {
    if (sample->made == square) {
      std::array<SAFEARRAYBOUND, 2> bounds{{{2, 0}, {2, 0}}};
      value.parray = SafeArrayCreate(VT_UI1, 2, bounds.data());
    } else if (sample->type == byteArray && !is(absent)) {
      SAFEARRAYBOUND bound{static_cast<ULONG>(std::strlen(sample->text)), lowest()};
      value.parray = SafeArrayCreate(VT_UI1, 1, &bound);
      std::memcpy(value.parray->pvData, sample->text, bound.cElements);
      if (is(fixed)) value.parray->fFeatures |= static_cast<USHORT>(isTyped() ? FADF_STATIC : FADF_FIXEDSIZE);
      if (is(locked)) SafeArrayLock(value.parray);
    } else if (sample->made == noNumber) {
      value.ullVal = sample->type == VT_R4 ? 0x7FA0'0001 : 0xFFF0'0000'0000'0001;  // they signal, both
    } else if (sample->made == infinite) {
      value.ullVal = 0xFFF0'0000'0000'0000;
    } else if (sample->type == VT_ERROR) {
      value.scode = sample->made == omitted ? DISP_E_PARAMNOTFOUND : E_FAIL;
    } else if (sample->text != nullptr || sample->type == VT_BSTR) {
      value = made(sample->type, sample->made);
    }
  }

  [[nodiscard]] bool isTyped() const { return choice % 2 != 0 && sample->type != VT_EMPTY; }
  enum Flavour : unsigned { plain, fixed, locked, absent };
  [[nodiscard]] bool is(Flavour flavour) const {
    return sample->type == byteArray && sample->text != nullptr && choice / 2 % 4 == flavour &&
           (flavour != absent || sample->text[0] == '\0');
  }
  [[nodiscard]] LONG lowest() const { return is(absent) ? 0 : static_cast<LONG>(choice / 8 % 3) - 1; }

  /// Where a host that refers to a variable of a fixed type has it: hosts keep them inside variants, too.
  void* inside() { return sample->type == VT_DECIMAL ? static_cast<void*>(&value.decVal) : &value.byref; }

  /// The value, also where a decimal variable is no part of a variant and has a reserved word of its own.
  [[nodiscard]] VARIANT content() const {
    VARIANT copy = value;
    if (isPlainDecimal()) copy.vt = value.decVal.wReserved == reserved ? VT_DECIMAL : VT_ILLEGAL;
    return copy;
  }

  /// Whether it holds what it has to. What is no result is not written again; a new array can be resized.
  [[nodiscard]] bool isRight() const {
    if (!written) return std::memcmp(&before, &value, sizeof value) == 0 && shown(content()) == expected;
    constexpr USHORT vector = 0x2000;
    const bool isArray = value.vt == byteArray && value.parray != nullptr;
    return !(isArray && (value.parray->fFeatures & vector) != 0) && shown(content()) == expected;
  }

  static constexpr USHORT reserved = 0x4242;
  [[nodiscard]] bool isPlainDecimal() const { return isTyped() && sample->type == VT_DECIMAL; }

  const Sample* sample;
  unsigned choice;
  VARIANT value{};
  VARIANT before{};
  std::string expected;
  bool written = false;
};

/// A result in the type of a variable, as the system converts it, into `content`.
inline HRESULT convertResult(const Value& value, const Cell& cell, std::string& content) {
  constexpr VARTYPE own[] = {VT_EMPTY, VT_BOOL, VT_UI1, VT_I2, VT_I4, VT_R8, VT_BSTR};
  const VARTYPE type = cell.sample->type;
  const std::string digits = toText(value);
  std::wstring wide;
  for (const char c : digits) wide += static_cast<wchar_t>(byteValue(c));
  VARIANT result = made(own[value.index()], wide);
  content = shown(result);
  HRESULT code = DISP_E_TYPEMISMATCH;
  if (type == byteArray && result.vt == VT_BSTR) {
    const LONG lowest = cell.isTyped() ? cell.lowest() : 0;
    content = std::to_string(type) + ":" + digits + "@" + std::to_string(lowest);
    code = S_OK;
  } else if (type != byteArray && type != VT_EMPTY) {
    code = VariantChangeTypeEx(&result, &result, LOCALE_INVARIANT, VARIANT_ALPHABOOL, type);
    if (SUCCEEDED(code)) content = shown(result);
  }
  VariantClear(&result);
  return code;
}

/// Notes what a cell has to hold behind a result, and returns what the call has to say of it.
inline HRESULT store(Cell& cell, const Value& value) {
  cell.written = true;
  if (!cell.isTyped() && cell.is(Cell::locked)) return DISP_E_ARRAYISLOCKED;
  std::string content;
  const HRESULT code = convertResult(value, cell, content);
  if (cell.isTyped() && FAILED(code)) return code;
  const bool isStiff = cell.isTyped() && (cell.is(Cell::fixed) || cell.is(Cell::locked));
  if (isStiff && content.size() != cell.expected.size()) return DISP_E_ARRAYISLOCKED;
  cell.expected = content;
  return S_OK;
}

inline constexpr HRESULT raises = E_INVALIDARG;  ///< stands for run-time error 5

inline int columnOf(const Sample& sample, Type wanted) {
  return wanted == Type::boolean   ? sample.truth
         : wanted == Type::byte    ? sample.byte
         : wanted == Type::integer ? sample.integer
                                   : 0;
}

inline HRESULT faultOfLoading(const Sample& sample, Type wanted) {
  if (sample.made == omitted) return S_OK;
  if (sample.text == nullptr && sample.type == VT_BSTR) return raises;
  if (sample.text == nullptr) return sample.truth == over ? DISP_E_OVERFLOW : DISP_E_TYPEMISMATCH;
  return sample.type == byteArray && wanted != Type::text ? DISP_E_TYPEMISMATCH : S_OK;
}

inline HRESULT faultOfConverting(const Sample& sample, Type wanted) {
  const int column = columnOf(sample, wanted);
  return column == over ? DISP_E_OVERFLOW : column == none ? DISP_E_TYPEMISMATCH : S_OK;
}

inline bool isNumber(const Value& value, Type type, int number) {
  if (type == Type::boolean) return value == Value(number != 0);
  return holds(value, type) && toNumber(value) == number;
}

inline bool isExpected(const Value& value, const Sample& sample, Type wanted) {
  if (wanted == Type::text) return value == Value(std::string(sample.text));
  if (wanted == Type::variant) return toText(value) == sample.text;
  return isNumber(value, wanted, columnOf(sample, wanted));
}

}  // namespace velk::com
