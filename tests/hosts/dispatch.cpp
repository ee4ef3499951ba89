#include "dispatch.h"

#include <algorithm>

namespace hosts {

Var Var::reference(VARTYPE type, void* variable) {
  Var var;
  var.vt = static_cast<VARTYPE>(VT_BYREF | type);
  var.byref = variable;
  return var;
}

Object::Object() {
  CLSID id{};
  if (SUCCEEDED(CLSIDFromProgID(L"VelkCom.Serial", &id))) {
    CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, dispatch_.outVoid());
  }
}

DISPID Object::id(const wchar_t* name) const {
  DISPID id = DISPID_UNKNOWN;
  auto* text = const_cast<LPOLESTR>(name);
  dispatch_->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
  return id;
}

Outcome Object::call(const wchar_t* name, std::vector<Var> arguments, std::vector<NamedVar> named) const {
  std::vector<LPOLESTR> names{const_cast<LPOLESTR>(name)};
  for (const NamedVar& argument : named) names.push_back(const_cast<LPOLESTR>(argument.name));
  std::vector<DISPID> ids(names.size());
  Outcome outcome;
  outcome.code = dispatch_->GetIDsOfNames(IID_NULL, names.data(), static_cast<UINT>(names.size()),
                                          LOCALE_USER_DEFAULT, ids.data());
  if (FAILED(outcome.code)) return outcome;
  std::reverse(arguments.begin(), arguments.end());
  std::vector<Var> all;
  for (const NamedVar& argument : named) all.push_back(argument.value);
  all.insert(all.end(), arguments.begin(), arguments.end());
  return invoke(ids.front(), DISPATCH_METHOD | DISPATCH_PROPERTYGET, all, {ids.begin() + 1, ids.end()});
}

Outcome Object::get(const wchar_t* name) const {
  return invoke(id(name), DISPATCH_PROPERTYGET, {});
}

Outcome Object::put(const wchar_t* name, const Var& value) const {
  return invoke(id(name), DISPATCH_PROPERTYPUT, {value}, {DISPID_PROPERTYPUT});
}

Outcome Object::invoke(DISPID id, WORD flags, std::vector<Var> arguments, std::vector<DISPID> named) const {
  DISPPARAMS passed{.rgvarg = arguments.data(),
                    .rgdispidNamedArgs = named.data(),
                    .cArgs = static_cast<UINT>(arguments.size()),
                    .cNamedArgs = static_cast<UINT>(named.size())};
  Outcome outcome;
  EXCEPINFO exception{};
  outcome.code = dispatch_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &passed, &outcome.value,
                                   &exception, &outcome.fault);
  outcome.scode = exception.scode;
  outcome.source = Var::textOf(exception.bstrSource);
  outcome.description = Var::textOf(exception.bstrDescription);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  return outcome;
}

}  // namespace hosts
