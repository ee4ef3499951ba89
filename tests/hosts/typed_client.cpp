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
  Ref<ITypeInfo> type;
  ASSERT_EQ(classInfo->GetClassInfo(type.out()), S_OK);
  BSTR name = nullptr;
  type->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr);
  EXPECT_EQ(Var::textOf(name), L"Serial");
  SysFreeString(name);
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

/// The type of each argument of a method, with a star for a variable, its flags and its default: 1 in, 2 out,
/// 16 optional, 32 with a default.
std::string argumentsOf(const FUNCDESC& function) {
  std::string text;
  for (int i = 0; i < function.cParams; ++i) {
    const ELEMDESC& argument = function.lprgelemdescParam[i];
    const bool isVariable = argument.tdesc.vt == VT_PTR;
    const auto& [fallback, flags] = argument.paramdesc;
    text += (i > 0 ? " " : "") + std::to_string(isVariable ? argument.tdesc.lptdesc->vt : argument.tdesc.vt) +
            (isVariable ? "*/" : "/") + std::to_string(flags) +
            (fallback != nullptr ? "=" + std::to_string(fallback->varDefaultValue.iVal) : "");
  }
  return text;
}

TEST_F(Client, typeLibraryAgreesWithDispatch) {
  Ref<ITypeLib> library;
  Ref<ITypeInfo> info;
  ASSERT_EQ(LoadRegTypeLib(velk::com::libraryId, 1, 0, LOCALE_NEUTRAL, library.out()), S_OK);
  EXPECT_EQ(library->GetTypeInfoOfGuid(velk::com::interfaceId, info.out()), S_OK);
  info = {};
  ASSERT_EQ(object_.dispatch()->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.out()), S_OK);
  EXPECT_EQ(object_.dispatch()->GetTypeInfo(1, LOCALE_USER_DEFAULT, Ref<ITypeInfo>().out()), DISP_E_BADINDEX);
  TYPEATTR* type = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&type), S_OK);
  EXPECT_EQ(type->guid, velk::com::interfaceId);
  EXPECT_EQ(type->typekind, TKIND_DISPATCH);
  EXPECT_EQ(type->cFuncs, 5 + 5 + 37) << "reading and writing each property, and the methods";
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
    SysFreeString(help);
    for (BSTR name : names) SysFreeString(name);
    if (function->memid == 32) {
      EXPECT_EQ(argumentsOf(*function), "8/1 17/1 8*/3 8*/19 2*/51=255 17/49=0") << "Ctl_Param";
      EXPECT_EQ(function->elemdescFunc.tdesc.vt, VT_UI1);
    }
    info->ReleaseFuncDesc(function);
  }
  info->ReleaseTypeAttr(type);
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

struct WrongCall {
  const wchar_t* method;
  std::vector<Var> arguments;
  std::vector<NamedVar> named;
  HRESULT code;
  UINT fault = 99;  ///< 99: untouched
};

TEST_F(Client, wrongCalls) {
  const std::vector<WrongCall> calls{
      {L"DECtoBCD", {256}, {}, DISP_E_OVERFLOW, 0},
      {L"IfSetBit", {L"", 1}, {}, DISP_E_TYPEMISMATCH, 1},
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
    EXPECT_EQ(outcome.value.vt, VT_EMPTY) << "call " << i;
  }
}

/// What a host may ask of a method (1), of a property (2 to read it, 4 and 8 to write it) and of neither.
TEST_F(Client, whatMayBeAsked) {
  constexpr HRESULT none = DISP_E_MEMBERNOTFOUND;
  constexpr HRESULT good = S_OK;
  constexpr HRESULT count = DISP_E_BADPARAMCOUNT;  // understood as writing
  constexpr HRESULT method[16] = {none, good, none, good, none, none, none, none,
                                  none, good, none, good, none, none, none, none};
  constexpr HRESULT property[16] = {none, none, good, good, count, count, count, count,
                                    none, none, good, good, count, count, count, count};
  for (WORD flags = 0; flags < 16; ++flags) {
    EXPECT_EQ(object_.invoke(object_.id(L"CloseTCP"), flags, {}).code, method[flags]) << flags;
    EXPECT_EQ(object_.invoke(object_.id(L"TCP"), flags, {}).code, property[flags]) << flags;
    for (const DISPID unknown : {-4, 0, 6, 70, 255, 256, 999}) {
      EXPECT_EQ(object_.invoke(unknown, flags, {}).code, none) << unknown;
    }
  }
}

TEST_F(Client, wrongUses) {
  const DISPID property = object_.id(L"TCP");
  EXPECT_EQ(object_.invoke(property, DISPATCH_PROPERTYGET, {1}, {0}).code, DISP_E_NONAMEDARGS);
  EXPECT_EQ(object_.invoke(property, DISPATCH_PROPERTYPUT, {1}, {0}).code, DISP_E_NONAMEDARGS);
  EXPECT_EQ(object_.invoke(property, DISPATCH_PROPERTYPUT, {true}).code, S_OK) << "without its name, too";
  EXPECT_EQ(object_.invoke(property, DISPATCH_PROPERTYPUT, {true, true}).code, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(object_.put(L"SerAddress", 256).fault, 0U);
  DISPPARAMS none{};
  const auto get = [&](REFIID reserved, DISPPARAMS* passed) {
    return object_.dispatch()->Invoke(property, reserved, 0, DISPATCH_PROPERTYGET, passed, nullptr, nullptr,
                                      nullptr);
  };
  EXPECT_EQ(get(IID_IUnknown, &none), DISP_E_UNKNOWNINTERFACE);
  EXPECT_EQ(get(IID_NULL, nullptr), E_INVALIDARG);
  EXPECT_EQ(get(IID_NULL, &none), S_OK) << "a result that nobody asks for";
}

TEST_F(Client, runtimeErrors) {
  const Outcome overflow = object_.call(L"DECtoBCD", {160});
  EXPECT_EQ(overflow.code, DISP_E_EXCEPTION);
  EXPECT_EQ(overflow.scode, runtimeError + 6);
  EXPECT_EQ(overflow.source, L"VelkCom.Serial");
  EXPECT_FALSE(overflow.description.empty());
  EXPECT_EQ(object_.call(L"ReadCom", {1, 5, 1, L"V"}).scode, runtimeError + 8018);
  EXPECT_EQ(object_.call(L"CloseCom", {}).value.bVal, 84) << "trapped";
  const std::wstring records = std::wstring(L"\x12\x59xyz\x1A\x00xyz", 10);
  Var variable(records);
  EXPECT_EQ(object_.call(L"ConvertSim", {Var::reference(variable)}).scode, runtimeError + 13);
  EXPECT_EQ(variable.text(), std::wstring(L"\x0C\x3Bxyz\x1A\x00xyz", 10))
      << "what was done before the failure";
}

TEST_F(Client, changedArgumentsComeBack) {
  Var text(L"\x12\x59xyz");
  Var inner = Var::reference(text);
  const Outcome outcome = object_.call(L"ConvertSim", {}, {{L"data", Var::reference(inner)}});
  EXPECT_EQ(outcome.value.text(), L"\x0C\x3Bxyz");
  EXPECT_EQ(text.text(), L"\x0C\x3Bxyz") << "through two references";
}

/// An object whose default property is 59, or what it is told. To give it drops the host's last reference to
/// the component.
class Dropping final : public IDispatch {
 public:
  explicit Dropping(Object& host) : host_(host) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* passed, VARIANT* result,
                                   EXCEPINFO*, UINT*) override {
    EXPECT_TRUE(id == DISPID_VALUE && flags == DISPATCH_PROPERTYGET && passed->cArgs == 0);
    IDispatch* const component = host_.dispatch();
    host_ = Object(Ref<IDispatch>());
    left = component->AddRef() - 1;
    component->Release();
    result->vt = type;
    result->llVal = 59;
    if (type == VT_DISPATCH) result->pdispVal = this;
    return code;
  }

  VARTYPE type = VT_I4;
  HRESULT code = S_OK;
  ULONG left = 0;  ///< references to the component behind that

 private:
  Object& host_;
};

TEST_F(Client, anObjectMayDropTheComponentThatAsksIt) {
  for (const auto& [type, code] : {std::pair(VT_I4, S_OK), std::pair(VT_I4, E_FAIL), std::pair(VT_NULL, S_OK),
                                   std::pair(VT_DISPATCH, S_OK)}) {
    Object second;
    second.dispatch()->AddRef();  // so that the count can be looked at
    IDispatch* const kept = second.dispatch();
    Dropping object(second);
    object.type = static_cast<VARTYPE>(type);
    object.code = code;
    Var argument;
    argument.vt = VT_DISPATCH;
    argument.pdispVal = &object;
    const bool isGood = type == VT_I4 && code == S_OK;
    const Outcome outcome = second.call(L"DECtoBCD", {argument});
    EXPECT_EQ(outcome.code, isGood ? S_OK : DISP_E_TYPEMISMATCH);
    EXPECT_EQ(outcome.value.bVal, isGood ? 0x59 : 0);
    EXPECT_EQ(object.left, 2U) << "that of this test, and one that the call holds";
    EXPECT_EQ(kept->Release(), 0U);
  }
}

}  // namespace
}  // namespace hosts
