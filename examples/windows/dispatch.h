// What both C++ examples need to call an automation object: arguments, one call, a text that frees itself.
#pragma once

#include <windows.h>
// The automation types need the base types first.
#include <oleauto.h>

#include <stdexcept>
#include <string>
#include <vector>

/// An automation text whose characters carry one byte each.
class ByteText {
 public:
  explicit ByteText(const std::string& bytes = "")
      : text_(SysAllocStringLen(nullptr, static_cast<UINT>(bytes.size()))) {
    for (std::size_t i = 0; i < bytes.size(); ++i) text_[i] = static_cast<unsigned char>(bytes[i]);
  }
  ByteText(const ByteText&) = delete;
  ByteText& operator=(const ByteText&) = delete;
  ~ByteText() { SysFreeString(text_); }

  [[nodiscard]] std::string bytes() const {
    std::string result;
    for (UINT i = 0; i < SysStringLen(text_); ++i) result += static_cast<char>(text_[i]);
    return result;
  }

  BSTR text_;
};

inline VARIANT argument(long number) {
  VARIANT value{};
  value.vt = VT_I4;
  value.lVal = number;
  return value;
}

inline VARIANT argument(const ByteText& text) {
  VARIANT value{};
  value.vt = VT_BSTR;
  value.bstrVal = text.text_;
  return value;
}

/// Arguments by reference, which receive what the method writes back.
inline VARIANT reference(ByteText& text) {
  VARIANT value{};
  value.vt = VT_BYREF | VT_BSTR;
  value.pbstrVal = &text.text_;
  return value;
}

inline VARIANT reference(short& number) {
  VARIANT value{};
  value.vt = VT_BYREF | VT_I2;
  value.piVal = &number;
  return value;
}

/// Calls method `id`, whose result is a byte, with the arguments in their order.
inline int call(IDispatch* object, DISPID id, std::vector<VARIANT> arguments) {
  std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
  DISPPARAMS passed{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
  VARIANT result{};
  const HRESULT code =
      object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &passed, &result, nullptr, nullptr);
  if (FAILED(code)) throw std::runtime_error("a call failed with code " + std::to_string(code));
  return result.bVal;
}

/// Makes an object of the registered class.
inline IDispatch* create(const wchar_t* name) {
  CLSID id{};
  void* object = nullptr;
  if (FAILED(CLSIDFromProgID(name, &id)) ||
      FAILED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &object))) {
    throw std::runtime_error("the component is not registered for programs of this bitness");
  }
  return static_cast<IDispatch*>(object);
}
