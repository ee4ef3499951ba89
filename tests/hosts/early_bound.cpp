// The component as programs call it that were built with its type library: by the ids and with exactly the
// types that the library on disk states, through the system's own ITypeInfo::Invoke.

#include <array>
#include <numeric>
#include <string_view>

#include "client.h"
#include "com/identifiers.h"

namespace hosts {
namespace {

using std::string_literals::operator""s;

constexpr INVOKEKIND get = INVOKE_PROPERTYGET;
constexpr INVOKEKIND put = INVOKE_PROPERTYPUT;

/// A call and what it has to come to: the result and what comes back in variables, between bars, or the
/// error.
struct Row {
  const wchar_t* name;
  std::vector<Var> arguments;
  std::string outcome;
  INVOKEKIND kind = INVOKE_FUNC;
};

/// A text as its bytes, anything else as the system puts it into words.
std::string bytesOf(const Var& value) {
  if (value.vt == VT_EMPTY) return "Empty";
  Var text;
  text.ChangeType(VT_BSTR, &value);
  std::string bytes;
  for (const wchar_t c : std::wstring_view(text.bstrVal, SysStringLen(text.bstrVal)))
    bytes += static_cast<char>(c);
  return bytes;
}

/// Brings a variable into the declared type, with the library's default where it is left out. Returns it or a
/// reference to it, as declared.
Var typed(const ELEMDESC& declared, Var& variable) {
  const bool isReference = declared.tdesc.vt == VT_PTR;
  const VARTYPE type = isReference ? declared.tdesc.lptdesc->vt : declared.tdesc.vt;
  const auto& [fallback, flags] = declared.paramdesc;
  EXPECT_TRUE(variable.vt != VT_EMPTY || (flags & PARAMFLAG_FOPT) != 0);
  if (variable.vt == VT_EMPTY && fallback != nullptr) variable = Var(fallback->varDefaultValue);
  if (type != VT_VARIANT) variable.ChangeType(type);
  return isReference ? reference(type, &variable.bVal) : variable;
}

std::string outcomeOf(const Row& row, ITypeInfo& type, const FUNCDESC& function, IUnknown* object) {
  const auto count = static_cast<std::size_t>(function.cParams);
  std::vector<Var> variables = row.arguments;
  std::vector<Var> passed(count);
  variables.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    passed[count - 1 - i] = typed(function.lprgelemdescParam[i], variables[i]);
  }
  DISPID named = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{passed.data(), &named, static_cast<UINT>(count), row.kind == put ? 1U : 0U};
  Var result;
  EXCEPINFO exception{};
  UINT fault = 0;
  const HRESULT code = type.Invoke(object, function.memid, static_cast<WORD>(row.kind), &parameters,
                                   row.kind == put ? nullptr : &result, &exception, &fault);
  const _bstr_t source(exception.bstrSource, false);
  const _bstr_t description(exception.bstrDescription, false);
  if (code == DISP_E_EXCEPTION) return std::to_string(exception.scode & 0xFFFF) + ": " + bytesOf(description);
  EXPECT_EQ(code, S_OK);
  const VARTYPE declared = function.elemdescFunc.tdesc.vt;
  EXPECT_TRUE(declared == VT_VARIANT || declared == VT_VOID || result.vt == declared) << result.vt;
  std::string outcome = bytesOf(result);
  for (std::size_t i = 0; i < count; ++i) {
    if ((passed[count - 1 - i].vt & VT_BYREF) != 0) outcome += '|' + bytesOf(variables[i]);
  }
  return outcome;
}

void check(const std::vector<Row>& rows, const wchar_t* file, IDispatch* object) {
  ComPtr<ITypeLib> library;
  ComPtr<ITypeInfo> info;
  ComPtr<ITypeInfo2> type;
  ComPtr<IUnknown> own;
  ASSERT_EQ(LoadTypeLibEx(file, REGKIND_NONE, &library), S_OK) << file;
  ASSERT_EQ(library->GetTypeInfoOfGuid(velk::com::interfaceId, &info), S_OK);
  ASSERT_EQ(info.As(&type), S_OK);
  ASSERT_EQ(object->QueryInterface(velk::com::interfaceId, &own), S_OK);
  for (const Row& row : rows) {
    auto* name = const_cast<LPOLESTR>(row.name);
    MEMBERID id = MEMBERID_NIL;
    UINT index = 0;
    FUNCDESC* function = nullptr;
    ASSERT_EQ(type->GetIDsOfNames(&name, 1, &id), S_OK) << name;
    ASSERT_EQ(type->GetFuncIndexOfMemId(id, row.kind, &index), S_OK) << name;
    ASSERT_EQ(type->GetFuncDesc(index, &function), S_OK);
    EXPECT_EQ(outcomeOf(row, *type.Get(), *function, own.Get()), row.outcome) << name;
    type->ReleaseFuncDesc(function);
  }
}

TEST_F(Client, earlyBound) {
  std::wstring high(128, L'\0');  // every byte from 128 on
  std::iota(high.begin(), high.end(), L'\x80');
  const Var data(high.c_str());
  const Var evening(L"Evening at home ");
  const std::string preset = "0|Evening at home |" + bytesOf(data) + "|200|0|0";
  const std::vector<Row> rows{
      {L"SerAddress", {200}, "Empty", put},
      {L"SerAddress", {}, "200", get},
      {L"OpenTCP", {L"127.0.0.1", toldPort("VELK_TCP_PORT"), L"pass"}, "0|pass"},
      {L"TCP", {}, "-1", get},
      {L"SoortETH", {}, "Q", get},
      {L"Ctl_Param", {L"R", 5, L""}, "0|T1|\x5\x1\x3\x1EM\x2M<S\x4S\x3|12"},
      {L"Ctl_Soft", {L"W", 52, 1, 7, L"O", 3, 10, false}, "0|7|O|3|10|0|-1"},
      {L"Ctl_Soft", {L"R", 52, 1, 0, L"", 0}, "0|7|O|3|10|0|-1"},
      {L"Preset", {L"W", 40, evening, 34, data, 200}, preset},
      {L"Preset", {L"R", 40, L"", 34, L""}, preset},
      {L"Preset", {L"R", 93, L"", 3, L""}, "113|||0|0|0"},
      {L"LdZr", {7, 3}, "007"},
      {L"WhatBit", {0}, "Empty"},
      {L"IfSetBit", {64, 6}, "-1"},
      {L"ModuleType", {L"123456"}, "4"},
      {L"DECtoBCD", {159}, "249"},
      {L"DECtoBCD", {160}, "6: A number does not fit the range of its type."},
      {L"ReadCom", {1, 5, 1, L"V"}, "\0\x5"s},
      {L"CloseTCP", {}, "0"},
      {L"TCP", {false}, "Empty", put},
      {L"ReadCom", {1, 5, 1, L"V"}, "8018: The serial port is not open: call OpenCom first."},
  };
  std::array<wchar_t, MAX_PATH> component{};
  GetModuleFileNameW(GetModuleHandleW(L"VelkCom.dll"), component.data(), MAX_PATH);
  check(rows, _wgetenv(L"VELK_TYPE_LIBRARY"), object_.Get());
  check(rows, component.data(), object_.Get());
}

}  // namespace
}  // namespace hosts
