// Printed from VelkCom's method table and its comments; see CONTRIBUTING.md.
// @help@.
//
// The component for programs in C++11 and later, without a type library to import:
//
//     CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
//     VelkCom::Serial serial;
//     const unsigned char result = serial.OpenCom(3);
//
// A std::string carries bytes, one character each. Arguments that are written back are references, or pointers where
// they may be left out. Methods that raise a run-time error throw VelkCom::Error.
#pragma once

#include <windows.h>
// The automation types need the base types first.
#include <oleauto.h>

#include <initializer_list>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace @library@ {

/// What a result byte says. Any other is a status that the controller gave.
enum Result : unsigned char {
@results@
};

/// The output modes by their numbers, named by the codes that Ctl_Param takes. A stored 4 is RO or DI.
enum OutputMode : unsigned char {
@modes@
};

/// A call that did not come to a result: code() is 0x800A0000 plus the number of a run-time error, or the system's own.
class Error : public std::runtime_error {
 public:
  Error(HRESULT code, const std::string& sentence) : std::runtime_error(sentence), code_(code) {}

  HRESULT code() const { return code_; }

 private:
  HRESULT code_;
};

/// A value of any type, which frees itself.
class Variant {
 public:
  Variant() { VariantInit(&value_); }
  Variant(double number) : Variant() {
    value_.vt = VT_R8;
    value_.dblVal = number;
  }
  Variant(const std::string& bytes) : Variant() {
    value_.bstrVal = SysAllocStringLen(nullptr, static_cast<UINT>(bytes.size()));
    if (value_.bstrVal == nullptr) throw std::bad_alloc();
    value_.vt = VT_BSTR;
    for (std::size_t i = 0; i < bytes.size(); ++i) value_.bstrVal[i] = static_cast<unsigned char>(bytes[i]);
  }
  Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
  Variant& operator=(Variant other) noexcept {
    const VARIANT former = value_;
    value_ = other.value_;
    other.value_ = former;
    return *this;
  }
  ~Variant() { VariantClear(&value_); }

  bool isEmpty() const { return value_.vt == VT_EMPTY; }
  long number() const { return as(VT_I4).value_.lVal; }

  std::string bytes() const {
    const Variant text = as(VT_BSTR);
    std::string result;
    for (UINT i = 0; i < SysStringLen(text.value_.bstrVal); ++i) result += static_cast<char>(text.value_.bstrVal[i]);
    return result;
  }

  VARIANT& raw() { return value_; }
  const VARIANT& raw() const { return value_; }

 private:
  Variant as(VARTYPE type) const {
    Variant result;
    const HRESULT code = VariantChangeType(&result.value_, const_cast<VARIANT*>(&value_), 0, type);
    if (FAILED(code)) throw Error(code, "a value of another type came");
    return result;
  }

  VARIANT value_;
};

namespace detail {

/// What stands in a call for one argument: its value, or the place that receives what comes back.
class Argument {
 public:
  Argument(const Argument&) = delete;
  Argument& operator=(const Argument&) = delete;

  Argument(unsigned char number) {
    value_.raw().vt = VT_UI1;
    value_.raw().bVal = number;
  }
  Argument(short number) {
    value_.raw().vt = VT_I2;
    value_.raw().iVal = number;
  }
  Argument(bool truth) { setFlag(value_.raw(), truth); }
  Argument(const std::string& bytes) : value_(bytes) {}
  Argument(const Variant& value) {
    if (FAILED(VariantCopy(&value_.raw(), const_cast<VARIANT*>(&value.raw())))) throw std::bad_alloc();
  }
  Argument(unsigned char* number) { refer(number != nullptr, VT_UI1, number); }
  Argument(short* number) { refer(number != nullptr, VT_I2, number); }
  Argument(bool* truth) : truth_(truth) {
    if (truth != nullptr) setFlag(value_.raw(), *truth);
    refer(truth != nullptr, VT_BOOL, &value_.raw().boolVal);
  }
  Argument(std::string* bytes) : bytes_(bytes) {
    if (bytes != nullptr) value_ = Variant(*bytes);
    refer(bytes != nullptr, VT_BSTR, &value_.raw().bstrVal);
  }

  Argument* self() { return this; }

  const VARIANT& passed() const { return passed_.vt != VT_EMPTY ? passed_ : value_.raw(); }

  /// Takes over what the method has written back.
  void receive() {
    if (bytes_ != nullptr) *bytes_ = value_.bytes();
    if (truth_ != nullptr) *truth_ = value_.raw().boolVal != VARIANT_FALSE;
  }

 private:
  static void setFlag(VARIANT& value, bool truth) {
    value.vt = VT_BOOL;
    value.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
  }

  /// An argument that is left out is an error value of its own.
  void refer(bool given, VARTYPE type, void* place) {
    passed_.vt = given ? static_cast<VARTYPE>(VT_BYREF | type) : static_cast<VARTYPE>(VT_ERROR);
    if (given) {
      passed_.byref = place;
    } else {
      passed_.scode = DISP_E_PARAMNOTFOUND;
    }
  }

  Variant value_;
  VARIANT passed_{};
  std::string* bytes_ = nullptr;
  bool* truth_ = nullptr;
};

template <class T>
struct ResultOf;
template <>
struct ResultOf<unsigned char> {
  static unsigned char from(Variant& value) { return static_cast<unsigned char>(value.number()); }
};
template <>
struct ResultOf<short> {
  static short from(Variant& value) { return static_cast<short>(value.number()); }
};
template <>
struct ResultOf<bool> {
  static bool from(Variant& value) { return value.number() != 0; }
};
template <>
struct ResultOf<std::string> {
  static std::string from(Variant& value) { return value.bytes(); }
};
template <>
struct ResultOf<Variant> {
  static Variant from(Variant& value) { return static_cast<Variant&&>(value); }
};
template <>
struct ResultOf<void> {
  static void from(Variant&) {}
};

/// The sentence of a run-time error, in the system's code page.
inline std::string sentenceOf(EXCEPINFO& info, HRESULT code) {
  if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
  const UINT length = SysStringLen(info.bstrDescription);
  std::string sentence(2 * length, '\0');
  const int size = length == 0 ? 0
                               : WideCharToMultiByte(CP_ACP, 0, info.bstrDescription, static_cast<int>(length),
                                                     &sentence[0], static_cast<int>(sentence.size()), nullptr, nullptr);
  sentence.resize(static_cast<std::size_t>(size));
  SysFreeString(info.bstrSource);
  SysFreeString(info.bstrDescription);
  SysFreeString(info.bstrHelpFile);
  return sentence.empty() ? "a call failed with code " + std::to_string(code) : sentence;
}

}  // namespace detail

/// @class@
class Serial {
 public:
  /// Makes the component, as it is registered. The thread has called CoInitializeEx.
  Serial() {
    void* object = nullptr;
    const HRESULT code = CoCreateInstance(classId(), nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &object);
    if (FAILED(code)) throw Error(code, "the component is not registered for programs of this bitness");
    object_ = static_cast<IDispatch*>(object);
  }

  /// Takes an object that there is.
  explicit Serial(IDispatch* object) : object_(object) { object_->AddRef(); }

  Serial(const Serial&) = delete;
  Serial& operator=(const Serial&) = delete;
  ~Serial() { object_->Release(); }

  static const CLSID& classId() {
    static const CLSID id = @classGuid@;
    return id;
  }

@methods@

 private:
  template <class T, class... Arguments>
  T call(DISPID id, WORD kind, const Arguments&... arguments) const {
    return invoke<T>(id, kind, {detail::Argument(arguments).self()...});
  }

  template <class T>
  T invoke(DISPID id, WORD kind, std::initializer_list<detail::Argument*> arguments) const {
    std::vector<VARIANT> passed;  // in reverse order, as the system wants them
    for (auto argument = arguments.end(); argument != arguments.begin();) passed.push_back((*--argument)->passed());
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters = {passed.data(), nullptr, static_cast<UINT>(passed.size()), 0};
    if (kind == DISPATCH_PROPERTYPUT) {
      parameters.rgdispidNamedArgs = &put;
      parameters.cNamedArgs = 1;
    }
    Variant result;
    EXCEPINFO info = {};
    const HRESULT code =
        object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, &result.raw(), &info, nullptr);
    for (detail::Argument* argument : arguments) argument->receive();
    if (code == DISP_E_EXCEPTION) {
      const HRESULT raised = info.scode;
      throw Error(raised, detail::sentenceOf(info, raised));
    }
    if (FAILED(code)) throw Error(code, "a call failed with code " + std::to_string(code));
    return detail::ResultOf<T>::from(result);
  }

  IDispatch* object_;
};

}  // namespace @library@
