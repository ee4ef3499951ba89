// What a C++ or Visual Basic host sees of the registered component.

#include <array>
#include <map>

#include "client.h"
#include "com/identifiers.h"

// The interface needs the automation types first.
#include <ocidl.h>

namespace hosts {
namespace {

class Apartment : public testing::Environment {
 public:
  void SetUp() override { ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr))); }
  void TearDown() override { CoUninitialize(); }
};
const auto* const apartment = testing::AddGlobalTestEnvironment(new Apartment);

/// One of the component's own entry points.
template <class Function>
Function* entry(const char* name) {
  void* const address = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"VelkCom.dll"), name));
  return reinterpret_cast<Function*>(address);
}

HRESULT canUnload() {
  return entry<decltype(DllCanUnloadNow)>("DllCanUnloadNow")();
}

HRESULT classObject(REFIID iid, void** object, REFCLSID id = velk::com::classId) {
  return entry<decltype(DllGetClassObject)>("DllGetClassObject")(id, iid, object);
}

TEST_F(Client, interfaces) {
  ComPtr<IUnknown> own;
  ComPtr<IUnknown> identity;
  ComPtr<IProvideClassInfo> classInfo;
  ComPtr<IUnknown> again;
  EXPECT_EQ(object_->QueryInterface(velk::com::interfaceId, &own), S_OK);
  EXPECT_EQ(object_.As(&identity), S_OK);
  ASSERT_EQ(own.As(&classInfo), S_OK);
  EXPECT_EQ(classInfo.As(&again), S_OK);
  EXPECT_EQ(identity.Get(), again.Get());
  EXPECT_EQ(own->QueryInterface(IID_IStream, &again), E_NOINTERFACE);
  EXPECT_EQ(again.Get(), nullptr);
  ComPtr<ITypeInfo> type;
  ASSERT_EQ(classInfo->GetClassInfo(&type), S_OK);
  _bstr_t name;
  type->GetDocumentation(MEMBERID_NIL, name.GetAddress(), nullptr, nullptr, nullptr);
  EXPECT_EQ(name, _bstr_t(L"Serial"));
}

TEST_F(Client, classFactory) {
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(classObject(IID_IClassFactory, &factory, IID_IStream), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(classObject(IID_IStream, &factory), E_NOINTERFACE);
  ASSERT_EQ(classObject(IID_IClassFactory, &factory), S_OK);
  ComPtr<IUnknown> made;
  EXPECT_EQ(factory->CreateInstance(object_.Get(), IID_IUnknown, &made), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IStream, &made), E_NOINTERFACE);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, &made), S_OK);
}

TEST_F(Client, staysLoadedWhileInUse) {
  EXPECT_EQ(canUnload(), S_FALSE) << "an object is in use";
  ComPtr<IClassFactory> factory;
  classObject(IID_IClassFactory, &factory);
  object_.Reset();
  EXPECT_EQ(canUnload(), S_FALSE) << "the factory is in use";
  factory->LockServer(TRUE);
  factory.Reset();
  EXPECT_EQ(canUnload(), S_FALSE) << "it is locked";
  object_ = Object();
  // A connection that is refused keeps the socket in use until it is closed.
  EXPECT_EQ(object_.number(L"OpenTCP", {L"127.0.0.1", 1}), 252);
  classObject(IID_IClassFactory, &factory);
  factory->LockServer(FALSE);
  factory.Reset();
  object_.Reset();
  EXPECT_EQ(canUnload(), S_FALSE) << "the socket is in use";
  object_ = Object();
  EXPECT_EQ(object_.number(L"OpenTCP", {L"127.0.0.1", 1}), 58) << "the socket is in use";
  EXPECT_EQ(object_.number(L"CloseTCP"), 0);
  object_.Reset();
  EXPECT_EQ(canUnload(), S_OK);
  // Its thread still lives; nothing of the component may run when the thread ends.
  for (int i = 0; i < 2; ++i) CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_EQ(GetModuleHandleW(L"VelkCom.dll"), nullptr);
}

/// The type of each argument of a method, with a star for a variable, its flags and its default: 1 in, 2 out,
/// 16 optional, 32 with a default.
std::string argumentsOf(const FUNCDESC& function) {
  std::string text;
  for (int i = 0; i < function.cParams; ++i) {
    const TYPEDESC& type = function.lprgelemdescParam[i].tdesc;
    const auto& [fallback, flags] = function.lprgelemdescParam[i].paramdesc;
    text += type.vt == VT_PTR ? std::to_string(type.lptdesc->vt) + "*/" : std::to_string(type.vt) + "/";
    text += std::to_string(flags);
    if (fallback != nullptr) text += "=" + std::to_string(fallback->varDefaultValue.iVal);
    text += ' ';
  }
  return text;
}

TEST_F(Client, typeLibraryAgreesWithDispatch) {
  ComPtr<ITypeLib> library;
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(LoadRegTypeLib(velk::com::libraryId, 1, 0, LOCALE_NEUTRAL, &library), S_OK);
  EXPECT_EQ(library->GetTypeInfoOfGuid(velk::com::interfaceId, &info), S_OK);
  EXPECT_EQ(object_->GetTypeInfo(1, LOCALE_USER_DEFAULT, &info), DISP_E_BADINDEX);
  ASSERT_EQ(object_->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info), S_OK);
  TYPEATTR* type = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&type), S_OK);
  EXPECT_EQ(type->guid, velk::com::interfaceId);
  EXPECT_EQ(type->typekind, TKIND_DISPATCH);
  EXPECT_EQ(type->cFuncs, 5 + 5 + 37) << "reading and writing each property, and the methods";
  for (UINT i = 0; i < type->cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    ASSERT_EQ(info->GetFuncDesc(i, &function), S_OK);
    std::array<BSTR, 16> names{};
    std::array<DISPID, 16> ids{};
    UINT count = 0;
    info->GetNames(function->memid, names.data(), static_cast<UINT>(names.size()), &count);
    EXPECT_EQ(object_->GetIDsOfNames(IID_NULL, names.data(), count, 0, ids.data()), S_OK);
    EXPECT_EQ(ids[0], function->memid);
    for (UINT n = 1; n < count; ++n) EXPECT_EQ(ids[n], static_cast<DISPID>(n - 1));
    for (BSTR name : names) SysFreeString(name);
    _bstr_t help;
    info->GetDocumentation(function->memid, nullptr, help.GetAddress(), nullptr, nullptr);
    EXPECT_GT(help.length(), 10U);
    if (function->memid == 32) {
      EXPECT_EQ(argumentsOf(*function), "8/1 17/1 8*/3 8*/19 2*/51=255 17/49=0 ") << "Ctl_Param";
      EXPECT_EQ(function->elemdescFunc.tdesc.vt, VT_UI1);
    }
    info->ReleaseFuncDesc(function);
  }
  info->ReleaseTypeAttr(type);
}

TEST_F(Client, names) {
  EXPECT_EQ(object_.id(L"dectobcd"), object_.id(L"DECTOBCD"));
  const std::wstring tooLong(5000, L'A');
  for (const wchar_t* const unknown : {L"DECtoBC", L"", L"DECtoBCD\u0130", tooLong.c_str()}) {
    EXPECT_EQ(object_.id(unknown), DISPID_UNKNOWN) << _bstr_t(unknown).length();
  }
  constexpr DISPID none = DISPID_UNKNOWN;
  const DISPID method = object_.id(L"IfSetBit");
  const struct {
    std::array<const wchar_t*, 3> names;
    HRESULT code;
    std::array<DISPID, 3> ids;
  } rows[] = {{{L"IfSetBit", L"bitnr", L"Getal"}, DISP_E_UNKNOWNNAME, {method, 1, none}},
              {{nullptr, L"bitnr", L"Bytte"}, DISP_E_TYPEMISMATCH, {none, none, none}},
              {{L"IfSetBit", L"bitnr", nullptr}, DISP_E_TYPEMISMATCH, {none, none, none}}};
  std::array<DISPID, 3> ids{};
  auto** const names = const_cast<LPOLESTR*>(rows[0].names.data());
  for (const auto& row : rows) {
    auto** const some = const_cast<LPOLESTR*>(row.names.data());
    EXPECT_EQ(object_->GetIDsOfNames(IID_NULL, some, 3, 0, ids.data()), row.code);
    EXPECT_EQ(ids, row.ids);
  }
  EXPECT_EQ(object_->GetIDsOfNames(IID_IUnknown, names, 1, 0, ids.data()), DISP_E_UNKNOWNINTERFACE);
}

/// What a host may ask of a method (1), of a property (2 to read it, 4 and 8 to write it) and of neither: +
/// it may, - it may not, w: it is understood as writing, without the value for that.
TEST_F(Client, whatMayBeAsked) {
  const std::map<char, HRESULT> codes{{'+', S_OK}, {'-', DISP_E_MEMBERNOTFOUND}, {'w', DISP_E_BADPARAMCOUNT}};
  for (WORD flags = 0; flags < 16; ++flags) {
    const HRESULT ofMethod = codes.at("-+-+-----+-+----"[flags]);
    const HRESULT ofProperty = codes.at("--++wwww--++wwww"[flags]);
    EXPECT_EQ(object_.invoke(object_.id(L"CloseTCP"), flags, {}).code, ofMethod) << flags;
    EXPECT_EQ(object_.invoke(object_.id(L"TCP"), flags, {}).code, ofProperty) << flags;
    for (const DISPID unknown : {-4, 0, 6, 70, 255, 256, 999}) {
      EXPECT_EQ(object_.invoke(unknown, flags, {}).code, DISP_E_MEMBERNOTFOUND) << unknown;
    }
  }
}

TEST_F(Client, wrongUses) {
  constexpr WORD get = DISPATCH_PROPERTYGET;
  constexpr WORD put = DISPATCH_PROPERTYPUT;
  const struct {
    const wchar_t* name;
    WORD flags;
    std::vector<Var> arguments;
    std::vector<DISPID> named;
    HRESULT code;
    UINT fault = 99;  ///< 99: untouched
  } rows[] = {{L"IfSetBit", DISPATCH_METHOD, {1, L""}, {}, DISP_E_TYPEMISMATCH, 1},
              {L"DECtoBCD", DISPATCH_METHOD, {1, 2}, {}, DISP_E_BADPARAMCOUNT},
              {L"TCP", get, {1}, {}, DISP_E_BADPARAMCOUNT},
              {L"TCP", get, {1}, {0}, DISP_E_NONAMEDARGS},
              {L"TCP", put, {1}, {0}, DISP_E_NONAMEDARGS},
              {L"TCP", put, {true}, {DISPID_PROPERTYPUT}, S_OK},
              {L"TCP", put, {true}, {}, S_OK},  // without its name, too
              {L"TCP", put, {true, true}, {}, DISP_E_BADPARAMCOUNT},
              {L"SerAddress", put, {256}, {}, DISP_E_OVERFLOW, 0}};
  for (const auto& row : rows) {
    const Outcome outcome = object_.invoke(object_.id(row.name), row.flags, row.arguments, row.named);
    EXPECT_EQ(outcome.code, row.code) << row.name;
    EXPECT_EQ(outcome.fault, row.fault) << row.name;
    EXPECT_EQ(outcome.value.vt, VT_EMPTY) << row.name;
  }
  DISPPARAMS none{};
  const auto invoke = [&](REFIID reserved, DISPPARAMS* passed) {
    return object_->Invoke(object_.id(L"TCP"), reserved, 0, get, passed, nullptr, nullptr, nullptr);
  };
  EXPECT_EQ(invoke(IID_IUnknown, &none), DISP_E_UNKNOWNINTERFACE);
  EXPECT_EQ(invoke(IID_NULL, nullptr), E_INVALIDARG);
  EXPECT_EQ(invoke(IID_NULL, &none), S_OK) << "a result that nobody asks for";
}

TEST_F(Client, runtimeErrors) {
  constexpr SCODE runtimeError = static_cast<SCODE>(0x800A0000);
  const Outcome overflow = object_.call(L"DECtoBCD", {160});
  EXPECT_EQ(overflow.code, DISP_E_EXCEPTION);
  EXPECT_EQ(overflow.scode, runtimeError + 6);
  EXPECT_EQ(overflow.source, _bstr_t(L"VelkCom.Serial"));
  EXPECT_GT(overflow.description.length(), 0U);
  EXPECT_EQ(object_.number(L"CloseCom"), 84) << "trapped";
  Var variable = L"\x12\x59xyz\x1A\x01xyz";
  EXPECT_EQ(object_.call(L"ConvertSim", {reference(variable)}).scode, runtimeError + 13);
  EXPECT_EQ(_bstr_t(variable), _bstr_t(L"\x0C\x3Bxyz\x1A\x01xyz")) << "done before the failure";
}

/// An object whose default property is what it is told. To give it drops the host's last reference to the
/// component.
struct Dropping final : IDispatch {
  Dropping(Object& host, const Outcome& outcome) : host(host), outcome(outcome) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_FAIL; }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* passed, VARIANT* result,
                                   EXCEPINFO*, UINT*) override {
    EXPECT_TRUE(id == DISPID_VALUE && flags == DISPATCH_PROPERTYGET && passed->cArgs == 0);
    IDispatch* const component = host.Detach();
    left = component->Release();
    *result = outcome.value;
    if (result->vt == VT_DISPATCH) result->pdispVal = this;
    return outcome.code;
  }

  Object& host;
  Outcome outcome;
  ULONG left = 0;  ///< references to the component behind that
};

TEST_F(Client, anObjectMayDropTheComponentThatAsksIt) {
  Var null;
  null.vt = VT_NULL;
  Var itself;
  itself.vt = VT_DISPATCH;
  for (const Outcome& given : {Outcome{.value = 59}, {.code = E_FAIL}, {.value = null}, {.value = itself}}) {
    Object second;
    Object kept = second;
    Dropping object(second, given);
    const Outcome outcome = kept.call(L"DECtoBCD", {static_cast<IDispatch*>(&object)});
    const bool isGood = given.value.vt == VT_INT;
    EXPECT_EQ(outcome.code, isGood ? S_OK : DISP_E_TYPEMISMATCH);
    EXPECT_EQ(outcome.value.bVal, isGood ? 0x59 : 0);
    EXPECT_EQ(object.left, 2U) << "that of this test, and one that the call holds";
    EXPECT_EQ(kept.Detach()->Release(), 0U) << "the call holds none any more";
  }
}

}  // namespace
}  // namespace hosts
