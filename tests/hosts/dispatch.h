#pragma once

#include <windows.h>
// The automation types need the base types first.
#include <oleauto.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace hosts {

/// An owned reference to an interface.
template <class T>
class Ref {
 public:
  Ref() = default;
  explicit Ref(T* object) : object_(object) {}
  Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Ref& operator=(Ref&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Ref() {
    if (object_ != nullptr) object_->Release();
  }
  T* operator->() const { return object_; }
  [[nodiscard]] T* get() const { return object_; }
  T** out() { return &object_; }
  void** outVoid() { return reinterpret_cast<void**>(&object_); }

 private:
  T* object_ = nullptr;
};

/// A variant with the values that a host may pass.
struct Var : VARIANT {
  Var() : VARIANT{} {}
  Var(int number) : VARIANT{} {  // NOLINT(google-explicit-constructor): arguments are written as plain lists
    vt = VT_I4;
    lVal = number;
  }
  Var(const std::wstring& text) : VARIANT{} {  // NOLINT(google-explicit-constructor): as above
    vt = VT_BSTR;
    bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  }
  Var(const wchar_t* text) : Var(std::wstring(text)) {}  // NOLINT(google-explicit-constructor): as above
  Var(const Var& other) : VARIANT{} { copy(other); }
  Var& operator=(const Var& other) {
    copy(other);
    return *this;
  }
  ~Var() { VariantClear(this); }

  /// A reference of a typed caller: `type` says to what.
  static Var reference(VARTYPE type, void* variable);

  /// A reference as script hosts pass it.
  static Var reference(VARIANT& variable) { return reference(VT_VARIANT, &variable); }

  [[nodiscard]] std::wstring text() const { return vt == VT_BSTR ? textOf(bstrVal) : L"(no text)"; }
  static std::wstring textOf(BSTR text) { return {text, SysStringLen(text)}; }

 private:
  void copy(VARIANT other) { VariantCopy(this, &other); }
};

/// What one call of `Invoke` came to.
struct Outcome {
  HRESULT code = S_OK;
  Var value;
  UINT fault = 99;
  SCODE scode = 0;
  std::wstring source;
  std::wstring description;
};

struct NamedVar {
  const wchar_t* name;
  Var value;
};

/// A `Serial` object, driven as late-bound hosts do.
class Object {
 public:
  /// Creates it by its registered name.
  Object();
  explicit Object(Ref<IDispatch> dispatch) : dispatch_(std::move(dispatch)) {}

  [[nodiscard]] DISPID id(const wchar_t* name) const;

  /// Calls a method with arguments by position and by name.
  Outcome call(const wchar_t* name, std::vector<Var> arguments, std::vector<NamedVar> named = {}) const;
  [[nodiscard]] Outcome get(const wchar_t* name) const;
  [[nodiscard]] Outcome put(const wchar_t* name, const Var& value) const;

  /// One plain `Invoke`, with the arguments in the caller's order.
  [[nodiscard]] Outcome invoke(DISPID id, WORD flags, std::vector<Var> arguments,
                               std::vector<DISPID> named = {}) const;

  [[nodiscard]] IDispatch* dispatch() const { return dispatch_.get(); }

 private:
  Ref<IDispatch> dispatch_;
};

}  // namespace hosts
