// What a C++ or Visual Basic host sees of the registered component.

#include <gtest/gtest.h>

#include <array>

#include "client.h"
#include "component/windows/identifiers.h"

// The interface needs the automation types first.
#include <ocidl.h>

namespace hosts {
namespace {

constexpr SCODE runtimeError = static_cast<SCODE>(0x800A0000);

class Apartment : public testing::Environment {
 public:
  void SetUp() override { ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr))); }
  void TearDown() override { CoUninitialize(); }
};
const auto* const apartment = testing::AddGlobalTestEnvironment(new Apartment);

/// The component's own entry points.
class Server {
 public:
  Server() : module_(GetModuleHandleW(L"VelkCom.dll")) {}

  [[nodiscard]] HRESULT canUnload() const {
    return reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(address("DllCanUnloadNow"))();
  }

  HRESULT classObject(REFCLSID id, REFIID iid, void** object) const {
    using Get = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    return reinterpret_cast<Get>(address("DllGetClassObject"))(id, iid, object);
  }

 private:
  [[nodiscard]] void* address(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(module_, name));
  }

  HMODULE module_;
};

TEST_F(Client, interfaces) {
  Ref<IUnknown> own;
  Ref<IUnknown> identity;
  Ref<IProvideClassInfo> classInfo;
  Ref<IUnknown> again;
  Ref<IUnknown> none;
  EXPECT_EQ(object_.dispatch()->QueryInterface(velk::com::interfaceId, own.outVoid()), S_OK);
  EXPECT_EQ(object_.dispatch()->QueryInterface(IID_IUnknown, identity.outVoid()), S_OK);
  ASSERT_EQ(own->QueryInterface(IID_IProvideClassInfo, classInfo.outVoid()), S_OK);
  EXPECT_EQ(classInfo->QueryInterface(IID_IUnknown, again.outVoid()), S_OK);
  EXPECT_EQ(identity.get(), again.get());
  EXPECT_EQ(own->QueryInterface(IID_IStream, none.outVoid()), E_NOINTERFACE);
  EXPECT_EQ(none.get(), nullptr);
}

TEST_F(Client, classFactory) {
  const Server server;
  Ref<IClassFactory> factory;
  EXPECT_EQ(server.classObject(IID_IStream, IID_IClassFactory, factory.outVoid()), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(server.classObject(velk::com::classId, IID_IStream, factory.outVoid()), E_NOINTERFACE);
  ASSERT_EQ(server.classObject(velk::com::classId, IID_IClassFactory, factory.outVoid()), S_OK);
  Ref<IUnknown> made;
  EXPECT_EQ(factory->CreateInstance(object_.dispatch(), IID_IUnknown, made.outVoid()), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IStream, made.outVoid()), E_NOINTERFACE);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, made.outVoid()), S_OK);
}

TEST_F(Client, staysLoadedWhileInUse) {
  const Server server;
  EXPECT_EQ(server.canUnload(), S_FALSE);
  Ref<IClassFactory> factory;
  server.classObject(velk::com::classId, IID_IClassFactory, factory.outVoid());
  // A connection that is refused keeps the socket in use until it is closed.
  EXPECT_EQ(object_.call(L"OpenTCP", {L"127.0.0.1", 1}).value.bVal, 252);
  object_ = Object(Ref<IDispatch>());
  factory->LockServer(TRUE);
  factory = Ref<IClassFactory>();
  EXPECT_EQ(server.canUnload(), S_FALSE);
  server.classObject(velk::com::classId, IID_IClassFactory, factory.outVoid());
  factory->LockServer(FALSE);
  factory = Ref<IClassFactory>();
  EXPECT_EQ(server.canUnload(), S_FALSE) << "the socket is in use";
  object_ = Object();
  EXPECT_EQ(object_.call(L"OpenTCP", {L"127.0.0.1", 1}).value.bVal, 58) << "the socket is in use";
  EXPECT_EQ(object_.call(L"CloseTCP", {}).value.bVal, 0);
  object_ = Object(Ref<IDispatch>());
  EXPECT_EQ(server.canUnload(), S_OK);
  // Its thread still lives; nothing of the component may run when the thread ends.
  for (int i = 0; i < 2; ++i) CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_EQ(GetModuleHandleW(L"VelkCom.dll"), nullptr);
}

TEST_F(Client, typeLibraryAgreesWithDispatch) {
  Ref<ITypeInfo> info;
  ASSERT_EQ(object_.dispatch()->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.out()), S_OK);
  EXPECT_EQ(object_.dispatch()->GetTypeInfo(1, LOCALE_USER_DEFAULT, Ref<ITypeInfo>().out()), DISP_E_BADINDEX);
  TYPEATTR* type = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&type), S_OK);
  EXPECT_EQ(type->guid, velk::com::interfaceId);
  EXPECT_EQ(type->typekind, TKIND_DISPATCH);
  int known = 0;
  for (UINT i = 0; i < type->cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    ASSERT_EQ(info->GetFuncDesc(i, &function), S_OK);
    std::array<BSTR, 16> names{};
    UINT count = 0;
    info->GetNames(function->memid, names.data(), static_cast<UINT>(names.size()), &count);
    std::array<DISPID, 16> ids{};
    EXPECT_EQ(object_.dispatch()->GetIDsOfNames(IID_NULL, names.data(), count, 0, ids.data()), S_OK);
    EXPECT_EQ(ids[0], function->memid);
    for (UINT n = 1; n < count; ++n) EXPECT_EQ(ids[n], static_cast<DISPID>(n - 1));
    BSTR help = nullptr;
    info->GetDocumentation(function->memid, nullptr, &help, nullptr, nullptr);
    EXPECT_GT(SysStringLen(help), 10U);
    known += static_cast<int>(SysStringLen(help) > 0);
    SysFreeString(help);
    for (BSTR name : names) SysFreeString(name);
    info->ReleaseFuncDesc(function);
  }
  EXPECT_GT(known, 30);
  info->ReleaseTypeAttr(type);
}

TEST_F(Client, typeLibraryDescribesArguments) {
  Ref<ITypeLib> library;
  ASSERT_EQ(LoadRegTypeLib(velk::com::libraryId, 1, 0, LOCALE_NEUTRAL, library.out()), S_OK);
  Ref<ITypeInfo> info;
  ASSERT_EQ(library->GetTypeInfoOfGuid(velk::com::interfaceId, info.out()), S_OK);
  std::array<WORD, 6> flags{};
  for (UINT i = 0;; ++i) {
    FUNCDESC* function = nullptr;
    if (FAILED(info->GetFuncDesc(i, &function))) break;
    if (function->memid == object_.id(L"Ctl_Param")) {
      ASSERT_EQ(function->cParams, 6);
      const ELEMDESC* parameters = function->lprgelemdescParam;
      EXPECT_EQ(function->elemdescFunc.tdesc.vt, VT_UI1);
      EXPECT_EQ(parameters[1].tdesc.vt, VT_UI1);
      ASSERT_EQ(parameters[4].tdesc.vt, VT_PTR);
      EXPECT_EQ(parameters[4].tdesc.lptdesc->vt, VT_I2);
      EXPECT_EQ(parameters[4].paramdesc.pparamdescex->varDefaultValue.iVal, 255);
      for (std::size_t n = 0; n < flags.size(); ++n) flags[n] = parameters[n].paramdesc.wParamFlags;
    }
    info->ReleaseFuncDesc(function);
  }
  constexpr WORD in = PARAMFLAG_FIN;
  constexpr WORD inOut = PARAMFLAG_FIN | PARAMFLAG_FOUT;
  constexpr WORD optional = PARAMFLAG_FOPT;
  constexpr WORD fallback = PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT;
  EXPECT_EQ(flags, (std::array<WORD, 6>{in, in, inOut, inOut | optional, inOut | fallback, in | fallback}));
}

TEST_F(Client, classInfo) {
  Ref<IProvideClassInfo> provider;
  ASSERT_EQ(object_.dispatch()->QueryInterface(IID_IProvideClassInfo, provider.outVoid()), S_OK);
  Ref<ITypeInfo> info;
  ASSERT_EQ(provider->GetClassInfo(info.out()), S_OK);
  BSTR name = nullptr;
  info->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr);
  EXPECT_EQ(Var::textOf(name), L"Serial");
  SysFreeString(name);
}

TEST_F(Client, names) {
  EXPECT_EQ(object_.id(L"dectobcd"), object_.id(L"DECTOBCD"));
  EXPECT_EQ(object_.id(L"DECtoBC"), DISPID_UNKNOWN);
  EXPECT_EQ(object_.id(L""), DISPID_UNKNOWN);
  EXPECT_EQ(object_.id(L"DECtoBCD\u0130"), DISPID_UNKNOWN);
  EXPECT_EQ(object_.id(std::wstring(5000, L'A').c_str()), DISPID_UNKNOWN);
  std::array<LPOLESTR, 3> names{const_cast<LPOLESTR>(L"IfSetBit"), const_cast<LPOLESTR>(L"bitnr"),
                                const_cast<LPOLESTR>(L"Getal")};
  std::array<DISPID, 3> ids{};
  EXPECT_EQ(object_.dispatch()->GetIDsOfNames(IID_NULL, names.data(), 3, 0, ids.data()), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids[1], 1);
  EXPECT_EQ(ids[2], DISPID_UNKNOWN);
  for (const std::size_t missing : {0, 2}) {
    std::array<LPOLESTR, 3> some = names;
    some[missing] = nullptr;
    EXPECT_EQ(object_.dispatch()->GetIDsOfNames(IID_NULL, some.data(), 3, 0, ids.data()),
              DISP_E_TYPEMISMATCH);
    EXPECT_EQ(ids, (std::array<DISPID, 3>{DISPID_UNKNOWN, DISPID_UNKNOWN, DISPID_UNKNOWN}));
  }
  EXPECT_EQ(object_.dispatch()->GetIDsOfNames(IID_IUnknown, names.data(), 1, 0, ids.data()),
            DISP_E_UNKNOWNINTERFACE);
}

TEST_F(Client, numbersOfEveryType) {
  for (const VARTYPE type : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_INT, VT_UINT, VT_I8, VT_UI8,
                             VT_R4, VT_R8, VT_CY, VT_DATE, VT_DECIMAL, VT_BSTR}) {
    Var number = Var::of(type, 59);
    ASSERT_EQ(number.vt, type);
    void* const inside = type == VT_DECIMAL ? static_cast<void*>(&number.decVal) : &number.byref;
    const Outcome byValue = object_.call(L"DECtoBCD", {number});
    const Outcome byType = object_.call(L"DECtoBCD", {Var::reference(type, inside)});
    const Outcome byVariant = object_.call(L"DECtoBCD", {Var::reference(number)});
    for (const Outcome* outcome : {&byValue, &byType, &byVariant}) {
      EXPECT_EQ(outcome->code, S_OK) << "type " << type;
      EXPECT_EQ(outcome->value.vt, VT_UI1);
      EXPECT_EQ(outcome->value.bVal, 0x59) << "type " << type;
    }
  }
}

TEST_F(Client, conversions) {
  const auto bcd = [&](const Var& number) { return object_.call(L"DECtoBCD", {number}).value.bVal; };
  EXPECT_EQ(bcd(Var::of(VT_R8, 2.5)), 2) << "half to even";
  EXPECT_EQ(bcd(Var::of(VT_CY, 3.5)), 4);
  EXPECT_EQ(bcd(Var()), 0) << "empty";
  EXPECT_EQ(bcd(L" 12 "), 0x12);
  EXPECT_EQ(object_.call(L"Minimum", {Var::of(VT_BOOL, 1), 200}).value.bVal, 200) << "true is 255";
  EXPECT_EQ(object_.call(L"LdZr", {Var::of(VT_R4, 0.1), 5}).value.text(), L"000.1");
  const Outcome nothing = object_.call(L"WhatBit", {0});
  EXPECT_EQ(nothing.code, S_OK);
  EXPECT_EQ(nothing.value.vt, VT_EMPTY);
  const Outcome truth = object_.call(L"IfSetBit", {64, 6});
  EXPECT_EQ(truth.value.vt, VT_BOOL);
  EXPECT_EQ(truth.value.boolVal, VARIANT_TRUE);
}

struct WrongCall {
  const wchar_t* method;
  std::vector<Var> arguments;
  std::vector<NamedVar> named;
  HRESULT code;
  UINT fault = 99;  ///< 99: untouched
};

TEST_F(Client, wrongCalls) {
  Var array;
  array.vt = VT_ARRAY | VT_UI1;
  Var null;
  null.vt = VT_NULL;
  const std::vector<WrongCall> calls{
      {L"DECtoBCD", {256}, {}, DISP_E_OVERFLOW, 0},
      {L"DECtoBCD", {-1}, {}, DISP_E_OVERFLOW, 0},
      {L"IfSetBit", {Var::of(VT_R8, 1e300), 2}, {}, DISP_E_OVERFLOW, 1},
      {L"IfSetBit", {1, L"two"}, {}, DISP_E_TYPEMISMATCH, 0},
      {L"IfSetBit", {L"", 1}, {}, DISP_E_TYPEMISMATCH, 1},
      {L"DECtoBCD", {array}, {}, DISP_E_TYPEMISMATCH, 0},
      {L"DECtoBCD", {null}, {}, DISP_E_TYPEMISMATCH, 0},
      {L"DECtoBCD", {Var::reference(VT_I2, nullptr)}, {}, DISP_E_TYPEMISMATCH, 0},
      {L"DECtoBCD", {Var::reference(VT_VARIANT, nullptr)}, {}, DISP_E_TYPEMISMATCH, 0},
      {L"DECtoBCD", {Var::omitted()}, {}, DISP_E_PARAMNOTOPTIONAL, 0},
      {L"IfSetBit", {Var::omitted(), 3}, {}, DISP_E_PARAMNOTOPTIONAL, 1},
      {L"IfSetBit", {}, {{L"Bitnr", 1}, {L"Bytte", Var::omitted()}}, DISP_E_PARAMNOTOPTIONAL, 1},
      {L"DECtoBCD", {}, {}, DISP_E_BADPARAMCOUNT},
      {L"DECtoBCD", {1, 2}, {}, DISP_E_BADPARAMCOUNT},
      {L"TCP", {1}, {}, DISP_E_BADPARAMCOUNT},
      {L"DECtoBCD", {}, {{L"Nummer", 1}}, DISP_E_UNKNOWNNAME},
      {L"IfSetBit", {1}, {{L"Bytte", 1}}, DISP_E_PARAMNOTFOUND, 0},
  };
  for (std::size_t i = 0; i < calls.size(); ++i) {
    const WrongCall& c = calls[i];
    const Outcome outcome = object_.call(c.method, c.arguments, c.named);
    EXPECT_EQ(outcome.code, c.code) << "call " << i;
    EXPECT_EQ(outcome.fault, c.fault) << "call " << i;
  }
}

TEST_F(Client, wrongUses) {
  const DISPID method = object_.id(L"CloseTCP");
  const DISPID property = object_.id(L"TCP");
  EXPECT_EQ(object_.invoke(999, DISPATCH_METHOD, {}).code, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(object_.invoke(-4, DISPATCH_PROPERTYGET, {}).code, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(object_.invoke(method, DISPATCH_PROPERTYGET, {}).code, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(object_.invoke(method, DISPATCH_PROPERTYPUT, {1}, {DISPID_PROPERTYPUT}).code,
            DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(object_.invoke(method, DISPATCH_METHOD | DISPATCH_PROPERTYPUT, {1}, {DISPID_PROPERTYPUT}).code,
            DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(object_.invoke(property, DISPATCH_METHOD, {}).code, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(object_.invoke(property, DISPATCH_PROPERTYGET, {1}, {0}).code, DISP_E_NONAMEDARGS);
  EXPECT_EQ(object_.invoke(property, DISPATCH_PROPERTYPUT, {1}, {0}).code, DISP_E_NONAMEDARGS);
  EXPECT_EQ(object_.invoke(property, DISPATCH_PROPERTYPUT, {}).code, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(object_.invoke(object_.id(L"DECtoBCD"), DISPATCH_METHOD, {1}, {7}).code, DISP_E_PARAMNOTFOUND);
  EXPECT_EQ(object_.put(L"SerAddress", 256).code, DISP_E_OVERFLOW);
  EXPECT_EQ(object_.put(L"TCP", L"perhaps").code, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(object_.dispatch()->Invoke(method, IID_IUnknown, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr,
                                       nullptr),
            DISP_E_UNKNOWNINTERFACE);
}

TEST_F(Client, properties) {
  EXPECT_EQ(object_.get(L"FlgBreak").value.boolVal, VARIANT_TRUE);
  EXPECT_EQ(object_.get(L"SerAddress").value.bVal, 2);
  EXPECT_EQ(object_.put(L"seraddress", L"17").code, S_OK);
  EXPECT_EQ(object_.get(L"SerAddress").value.bVal, 17);
  EXPECT_EQ(object_.put(L"FlgBreak", Var::of(VT_R8, 0)).code, S_OK);
  EXPECT_EQ(object_.get(L"FlgBreak").value.boolVal, VARIANT_FALSE);
  EXPECT_EQ(object_.put(L"SoortETH", 5).code, S_OK);
  EXPECT_EQ(object_.get(L"SoortETH").value.text(), L"5");
}

TEST_F(Client, namedArguments) {
  const Outcome outcome = object_.call(L"IfSetBit", {}, {{L"BITNR", 6}, {L"Bytte", 64}});
  EXPECT_EQ(outcome.code, S_OK);
  EXPECT_EQ(outcome.value.boolVal, VARIANT_TRUE);
  EXPECT_EQ(object_.call(L"IfSetBit", {64}, {{L"Bitnr", 5}}).value.boolVal, VARIANT_FALSE);
}

TEST_F(Client, runtimeErrors) {
  const Outcome overflow = object_.call(L"DECtoBCD", {160});
  EXPECT_EQ(overflow.code, DISP_E_EXCEPTION);
  EXPECT_EQ(overflow.scode, runtimeError + 6);
  EXPECT_EQ(overflow.source, L"VelkCom.Serial");
  EXPECT_FALSE(overflow.description.empty());
  EXPECT_EQ(object_.call(L"ReadCom", {1, 5, 1, L"V"}).scode, runtimeError + 8018);
  EXPECT_EQ(object_.call(L"ConvertErr", {L"none"}).scode, runtimeError + 13);
  EXPECT_EQ(object_.call(L"CloseCom", {}).value.bVal, 84) << "trapped";
}

TEST_F(Client, textsAreBytes) {
  std::wstring all;
  for (wchar_t c = 0; c < 256; ++c) all += c;
  EXPECT_EQ(object_.put(L"SoortETH", all).code, S_OK);
  EXPECT_EQ(object_.get(L"SoortETH").value.text(), all);
  // What the code page has as one byte comes back as that byte; the rest is refused.
  EXPECT_EQ(object_.put(L"SoortETH", L"\u20AC").code, S_OK);
  EXPECT_EQ(object_.get(L"SoortETH").value.text(), L"\x80");
  for (const wchar_t* text : {L"a\u4E2D", L"\u221E", L"\uFFFD", L"\uFF21"}) {
    EXPECT_EQ(object_.put(L"SoortETH", text).scode, runtimeError + 5);
  }
}

/// `ConvertSim` changes its argument: the times of a record from BCD.
constexpr const wchar_t* record = L"\x12\x05\x34\x01\x59\x02";

TEST_F(Client, writesIntoTypedVariables) {
  BSTR text = SysAllocString(record);
  const Outcome outcome = object_.call(L"ConvertSim", {Var::reference(VT_BSTR, &text)});
  EXPECT_EQ(outcome.code, S_OK);
  EXPECT_NE(Var::textOf(text), record);
  SysFreeString(text);
}

TEST_F(Client, writesIntoVariants) {
  Var text(record);
  Var expected(record);
  object_.call(L"ConvertSim", {Var::reference(VT_BSTR, &expected.bstrVal)});
  Var inner = Var::reference(text);
  EXPECT_EQ(object_.call(L"ConvertSim", {Var::reference(inner)}).code, S_OK);
  EXPECT_EQ(text.text(), expected.text()) << "through two references";

  Var passWord;
  object_.call(L"OpenTCP", {L"127.0.0.1", 1, Var::reference(passWord)});
  object_.call(L"CloseTCP", {});
  EXPECT_EQ(passWord.text(), std::wstring(4, L'\0')) << "an empty variant takes the result's type";
}

TEST_F(Client, leavesUnchangedVariablesAlone) {
  short number = 1234;
  Var variant = Var::of(VT_R8, 5678);
  for (const Var& argument : {Var::reference(VT_I2, &number), Var::reference(variant)}) {
    object_.call(L"OpenTCP", {L"127.0.0.1", 1, argument});
    object_.call(L"CloseTCP", {});
  }
  EXPECT_EQ(number, 1234);
  EXPECT_EQ(variant.vt, VT_R8);
  EXPECT_EQ(object_.call(L"OpenTCP", {L"127.0.0.1", 1, Var::omitted(), 5}).value.bVal, 252);
  object_.call(L"CloseTCP", {});
}

}  // namespace
}  // namespace hosts
