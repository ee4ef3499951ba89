#pragma once

#include <winsock2.h>
// The socket header has to come first, and the base types before those of automation.
#include <windows.h>
//
#include <comdef.h>
#include <gtest/gtest.h>
#include <wrl/client.h>

#include <vector>

namespace hosts {

using Microsoft::WRL::ComPtr;
using Var = _variant_t;

/// A reference of a typed caller: `type` says to what.
Var reference(VARTYPE type, void* variable);

/// A reference as script hosts pass it.
inline Var reference(VARIANT& variable) {
  return reference(VT_VARIANT, &variable);
}

/// What one call of `Invoke` came to.
struct Outcome {
  HRESULT code = S_OK;
  Var value;
  UINT fault = 99;  ///< 99: untouched
  SCODE scode = 0;
  _bstr_t source;
  _bstr_t description;
};

/// A `Serial` object, driven as late-bound hosts do.
class Object : public ComPtr<IDispatch> {
 public:
  /// Creates it by its registered name.
  Object();
  explicit Object(ComPtr<IDispatch> dispatch) : ComPtr(std::move(dispatch)) {}

  [[nodiscard]] DISPID id(const wchar_t* name) const;

  /// Calls a method with arguments by position.
  Outcome call(const wchar_t* name, std::vector<Var> arguments) const;

  /// The result of a method whose results are numbers.
  int number(const wchar_t* name, std::vector<Var> arguments = {}) const {
    return call(name, std::move(arguments)).value.bVal;
  }

  /// One plain `Invoke`, with the arguments in the caller's order.
  [[nodiscard]] Outcome invoke(DISPID id, WORD flags, std::vector<Var> arguments,
                               std::vector<DISPID> named = {}) const;
};

/// A TCP port that the runner tells; ports above 32767 are negative numbers to the component.
int toldPort(const char* variable);

class Client : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(object_.Get(), nullptr) << "is the component registered?"; }

  Object object_;
};

}  // namespace hosts
