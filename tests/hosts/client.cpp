#include "client.h"

#include <algorithm>
#include <cstdlib>

namespace hosts {

Var reference(VARTYPE type, void* variable) {
  Var var;
  var.vt = static_cast<VARTYPE>(VT_BYREF | type);
  var.byref = variable;
  return var;
}

Object::Object() {
  CLSID id{};
  if (FAILED(CLSIDFromProgID(L"VelkCom.Serial", &id))) return;
  CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(GetAddressOf()));
}

DISPID Object::id(const wchar_t* name) const {
  DISPID id = DISPID_UNKNOWN;
  auto* text = const_cast<LPOLESTR>(name);
  Get()->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
  return id;
}

Outcome Object::call(const wchar_t* name, std::vector<Var> arguments) const {
  std::reverse(arguments.begin(), arguments.end());
  return invoke(id(name), DISPATCH_METHOD | DISPATCH_PROPERTYGET, std::move(arguments));
}

Outcome Object::invoke(DISPID id, WORD flags, std::vector<Var> arguments, std::vector<DISPID> named) const {
  DISPPARAMS passed{arguments.data(), named.data(), static_cast<UINT>(arguments.size()),
                    static_cast<UINT>(named.size())};
  Outcome outcome;
  EXCEPINFO exception{};
  outcome.code = Get()->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &passed, &outcome.value, &exception,
                               &outcome.fault);
  outcome.scode = exception.scode;
  outcome.source.Attach(exception.bstrSource);
  outcome.description.Attach(exception.bstrDescription);
  return outcome;
}

int toldPort(const char* variable) {
  const char* const text = std::getenv(variable);
  return text == nullptr ? 0 : static_cast<short>(std::atoi(text));
}

}  // namespace hosts
