// Arguments of every type on their way to the component and back.

#include <array>
#include <cstdint>
#include <cstring>
#include <numeric>

#include "client.h"

namespace hosts {
namespace {

constexpr VARTYPE byteArray = VT_ARRAY | VT_UI1;

/// With the link of input 2 of source 52 to output 7 in the simulated controller.
class Arguments : public Client {
 protected:
  void SetUp() override {
    Client::SetUp();
    ASSERT_EQ(call(L"OpenTCP", {L"127.0.0.1", toldPort("VELK_TCP_PORT"), L"pass"}), 0);
    ASSERT_EQ(call(L"Ctl_Soft", {L"W", 52, 2, 7, L"O", 3, 10, Var::of(VT_BOOL, -1), Var::of(VT_BOOL, 0)}), 0);
  }
  void TearDown() override {
    call(L"Ctl_Soft", {L"W", 52, 2, 0, L"O", 0});
    call(L"CloseTCP", {});
  }

  int call(const wchar_t* name, const std::vector<Var>& arguments) {
    const Outcome outcome = object_.call(name, arguments);
    return SUCCEEDED(outcome.code) ? outcome.value.bVal : -1;
  }

  /// Reads the link with a variable for its destination, which is 7.
  int destination(const Var& variable) { return call(L"Ctl_Soft", {L"R", 52, 2, variable, L"", 0}); }

  /// The 12 parameters of output 5.
  std::wstring itemsOfOutput() {
    Var text;
    call(L"Ctl_Param", {L"R", 5, L"", Var::reference(text)});
    return text.text();
  }
};

double numberIn(Var variable) {
  EXPECT_EQ(VariantChangeTypeEx(&variable, &variable, LOCALE_INVARIANT, 0, VT_R8), S_OK);
  return variable.dblVal;
}

TEST_F(Arguments, numbersOfEveryTypeComeBack) {
  for (const VARTYPE type : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_INT, VT_UINT, VT_I8, VT_UI8,
                             VT_R4, VT_R8, VT_CY, VT_DATE, VT_DECIMAL, VT_BSTR}) {
    Var typed = Var::of(type, 0);
    Var variant = Var::of(type, 0);
    // A host may keep the variable of a fixed type inside a variant: that has to stay one of that type.
    void* const inside = type == VT_DECIMAL ? static_cast<void*>(&typed.decVal) : &typed.byref;
    EXPECT_EQ(destination(Var::reference(type, inside)), 0);
    EXPECT_EQ(destination(Var::reference(variant)), 0);
    for (const Var* variable : {&typed, &variant}) {
      EXPECT_EQ(variable->vt, type);
      EXPECT_EQ(numberIn(*variable), 7) << "type " << type;
    }
  }
  VARIANT_BOOL high = VARIANT_FALSE;
  Var low = Var::of(VT_BOOL, -1);
  EXPECT_EQ(
      call(L"Ctl_Soft", {L"R", 52, 2, 0, L"", 0, 0, Var::reference(VT_BOOL, &high), Var::reference(low)}), 0);
  EXPECT_EQ(high, VARIANT_TRUE);
  EXPECT_EQ(low.vt, VT_BOOL);
  EXPECT_EQ(low.boolVal, VARIANT_FALSE);
}

TEST_F(Arguments, oneVariableForSeveralResults) {
  BYTE number = 0;
  const Var same = Var::reference(VT_UI1, &number);
  EXPECT_EQ(call(L"Ctl_Soft", {L"R", 52, 2, same, L"", same, same}), 0);
  EXPECT_EQ(number, 10) << "the last of 7, 3 and 10";
  BSTR text = SysAllocString(L"255");
  const Var both = Var::reference(VT_BSTR, &text);
  EXPECT_EQ(call(L"Ctl_Param", {L"R", 5, L"", both, both}), 0);
  EXPECT_EQ(Var::textOf(text), L"12") << "the number of items, behind the items";
  SysFreeString(text);
}

// --- Arrays of bytes

/// An array of `size` bytes: 250, 251 and so on.
SAFEARRAY* bytes(ULONG size, LONG lowest = 0, VARTYPE type = VT_UI1) {
  SAFEARRAYBOUND bound{size, lowest};
  SAFEARRAY* const array = SafeArrayCreate(type, 1, &bound);
  auto* const data = static_cast<BYTE*>(array->pvData);
  if (type == VT_UI1) std::iota(data, data + size, BYTE{250});
  return array;
}

Var arrayOf(VARTYPE type, SAFEARRAY* array) {
  Var var;
  var.vt = static_cast<VARTYPE>(VT_ARRAY | type);
  var.parray = array;
  return var;
}

std::wstring contentOf(SAFEARRAY* array) {
  const auto* const data = static_cast<const BYTE*>(array->pvData);
  return {data, data + array->rgsabound[0].cElements};
}

TEST_F(Arguments, arraysOfBytesAreTexts) {
  EXPECT_EQ(object_.put(L"SoortETH", arrayOf(VT_UI1, bytes(6))).code, S_OK);
  EXPECT_EQ(object_.get(L"SoortETH").value.text(), L"\xFA\xFB\xFC\xFD\xFE\xFF");
  EXPECT_EQ(object_.put(L"SoortETH", arrayOf(VT_UI1, nullptr)).code, S_OK);
  EXPECT_EQ(object_.get(L"SoortETH").value.text(), L"");
  EXPECT_EQ(object_.put(L"SoortETH", L"Q").code, S_OK);
  Var variable = arrayOf(VT_UI1, bytes(3, 1));
  SAFEARRAY* typed = variable.parray;
  for (const Var& data : {variable, Var::reference(variable), Var::reference(byteArray, &typed)}) {
    object_.call(L"WriteCom", {3, 5, 200, L"V", L"xyz"});
    EXPECT_EQ(object_.call(L"WriteCom", {3, 5, 200, L"V", data}).code, S_OK);
    EXPECT_EQ(object_.call(L"ReadCom", {3, 5, 200, L"V"}).value.text(), std::wstring(L"\0\xFA\xFB\xFC", 4));
  }
  EXPECT_EQ(variable.vt, byteArray) << "what is only read stays";
}

TEST_F(Arguments, arraysComeBackAsArrays) {
  const std::wstring items = itemsOfOutput();
  ASSERT_EQ(items.size(), 12U);
  const auto read = [&](const Var& variable) { return call(L"Ctl_Param", {L"R", 5, L"", variable}); };

  for (SAFEARRAY* typed :
       {static_cast<SAFEARRAY*>(nullptr), bytes(0), bytes(3, 1), bytes(12), bytes(20, -5)}) {
    const LONG lowest = typed == nullptr ? 0 : typed->rgsabound[0].lLbound;
    EXPECT_EQ(read(Var::reference(byteArray, &typed)), 0);
    EXPECT_EQ(contentOf(typed), items);
    EXPECT_EQ(typed->rgsabound[0].lLbound, lowest);
    // Its owner may resize it, and so may the next result; one that is made as a vector is of fixed size.
    constexpr USHORT vector = 0x2000;
    EXPECT_EQ(typed->fFeatures & (FADF_FIXEDSIZE | vector), 0);
    SafeArrayDestroy(typed);
  }
  SAFEARRAY* both = nullptr;
  const Var same = Var::reference(byteArray, &both);
  EXPECT_EQ(call(L"Ctl_Param", {L"R", 5, same, same}), 0) << "the mode, and then the longer items";
  EXPECT_EQ(contentOf(both), items);
  SafeArrayDestroy(both);
  Var variant = arrayOf(VT_UI1, bytes(3));
  EXPECT_EQ(read(Var::reference(variant)), 0);
  ASSERT_EQ(variant.vt, byteArray);
  EXPECT_EQ(contentOf(variant.parray), items);
  EXPECT_EQ(call(L"Ctl_Param", {L"R", 5, Var::reference(variant), Var::reference(variant)}), 0)
      << "one for both";
  ASSERT_EQ(variant.vt, byteArray);
  EXPECT_EQ(contentOf(variant.parray), items);
}

TEST_F(Arguments, arraysThatCannotChange) {
  const auto read = [&](const Var& variable) {
    return object_.call(L"Ctl_Param", {L"R", 5, L"", variable}).code;
  };
  SAFEARRAY* fixed = bytes(3);
  SAFEARRAY* fitting = bytes(12);
  fixed->fFeatures |= FADF_FIXEDSIZE;
  fitting->fFeatures |= FADF_FIXEDSIZE;
  EXPECT_EQ(read(Var::reference(byteArray, &fixed)), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(contentOf(fixed), L"\xFA\xFB\xFC");
  EXPECT_EQ(read(Var::reference(byteArray, &fitting)), S_OK);
  EXPECT_EQ(contentOf(fitting), itemsOfOutput());
  for (SAFEARRAY* array : {fixed, fitting}) {
    array->fFeatures &= ~FADF_FIXEDSIZE;
    SafeArrayDestroy(array);
  }
  Var variant = arrayOf(VT_UI1, bytes(3));
  SafeArrayLock(variant.parray);
  EXPECT_EQ(read(Var::reference(variant)), DISP_E_ARRAYISLOCKED);
  ASSERT_EQ(variant.vt, byteArray);
  EXPECT_EQ(contentOf(variant.parray), L"\xFA\xFB\xFC");
  SafeArrayUnlock(variant.parray);
}

TEST_F(Arguments, otherArraysAreRefused) {
  std::array<SAFEARRAYBOUND, 2> square{{{2, 0}, {2, 0}}};
  EXPECT_EQ(object_.put(L"SoortETH", arrayOf(VT_UI1, SafeArrayCreate(VT_UI1, 2, square.data()))).code,
            DISP_E_TYPEMISMATCH);
  EXPECT_EQ(object_.put(L"SoortETH", arrayOf(VT_I2, bytes(2, 0, VT_I2))).code, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(object_.put(L"SoortETH", arrayOf(VT_VARIANT, bytes(2, 0, VT_VARIANT))).code, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(object_.call(L"DECtoBCD", {arrayOf(VT_UI1, bytes(2))}).code, DISP_E_TYPEMISMATCH) << "no text";
  EXPECT_EQ(object_.get(L"SoortETH").value.text(), L"Q");
}

// --- Objects

/// An object whose default property is 59. To give it drops the host's last reference to the component.
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
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                   UINT*) override {
    IDispatch* const component = host_.dispatch();
    host_ = Object(Ref<IDispatch>());
    left = component->AddRef() - 1;
    component->Release();
    result->vt = VT_I4;
    result->lVal = 59;
    return S_OK;
  }

  ULONG left = 0;  ///< references to the component behind that

 private:
  Object& host_;
};

TEST_F(Client, anObjectMayDropTheComponentThatAsksIt) {
  Object second;
  second.dispatch()->AddRef();  // so that the count can be looked at
  IDispatch* const kept = second.dispatch();
  Dropping object(second);
  Var argument;
  argument.vt = VT_DISPATCH;
  argument.pdispVal = &object;
  EXPECT_EQ(second.call(L"DECtoBCD", {argument}).value.bVal, 0x59);
  EXPECT_EQ(object.left, 2U) << "that of this test, and one that the call holds";
  EXPECT_EQ(kept->Release(), 0U);
}

// --- No number

/// Has the processor stop the program at an invalid operation, as some hosts do: in both of its units for
/// such numbers. The compiler's own functions for that are not there in every 32-bit build.
class InvalidOperationsStop {
 public:
  InvalidOperationsStop() {
    __asm__ volatile("stmxcsr %0; fnstcw %1" : "=m"(vector_), "=m"(legacy_));
    constexpr unsigned flag = 0x01;
    constexpr unsigned vectorMask = 0x80;
    set(vector_ & ~(flag | vectorMask), static_cast<unsigned short>(legacy_ & ~flag));
  }
  ~InvalidOperationsStop() { set(vector_, legacy_); }
  InvalidOperationsStop(const InvalidOperationsStop&) = delete;
  InvalidOperationsStop& operator=(const InvalidOperationsStop&) = delete;

 private:
  static void set(unsigned vector, unsigned short legacy) {
    __asm__ volatile("fnclex; fldcw %0; ldmxcsr %1" : : "m"(legacy), "m"(vector));
  }

  unsigned vector_ = 0;
  unsigned short legacy_ = 0;
};

TEST_F(Arguments, noNumberIsAnOverflow) {
  struct NoNumber {
    VARTYPE type;
    std::uint64_t bits;
  };
  // Quiet and signalling, and what has infinity's neighbours.
  for (const NoNumber& c : {NoNumber{VT_R8, 0x7FF8'0000'0000'0000}, NoNumber{VT_R8, 0x7FF0'0000'0000'0001},
                            NoNumber{VT_R8, 0xFFFF'FFFF'FFFF'FFFF}, NoNumber{VT_DATE, 0x7FF8'0000'0000'0000},
                            NoNumber{VT_R4, 0x7FC0'0000}, NoNumber{VT_R4, 0xFF80'0001}}) {
    std::uint64_t bits = c.bits;
    Var value;
    value.vt = c.type;
    std::memcpy(&value.byref, &bits, sizeof bits);
    for (const Var& argument : {value, Var::reference(value), Var::reference(c.type, &bits)}) {
      for (const wchar_t* method : {L"DECtoBCD", L"ConvertErr", L"WhatBit", L"ConvertSim"}) {
        const InvalidOperationsStop stop;
        EXPECT_EQ(object_.call(method, {argument}).code, DISP_E_OVERFLOW);
      }
    }
  }
  std::uint64_t infinity = 0xFFF0'0000'0000'0000;
  const InvalidOperationsStop stop;
  EXPECT_EQ(object_.call(L"DECtoBCD", {Var::reference(VT_R8, &infinity)}).code, DISP_E_OVERFLOW);
  EXPECT_EQ(object_.call(L"ConvertErr", {Var::reference(VT_R8, &infinity)}).value.bVal, 100);
}

}  // namespace
}  // namespace hosts
