#include "com/serial_object.h"

#include <algorithm>
#include <array>

#include "com/call.h"
#include "com/guarded.h"
#include "com/identifiers.h"
#include "com/server.h"
#include "com/type_library.h"
#include "component/methods.h"
#include "values/runtime_error.h"

namespace velk::com {
namespace {

/// Hosts know run-time error n as this plus n.
constexpr SCODE runtimeErrorBase = static_cast<SCODE>(0x800A0000);

constexpr std::size_t longestName = 64;

/// A name of the interface, which has ASCII letters only; none for a text that can be no such name.
class Name {
 public:
  explicit Name(const wchar_t* text) {
    while (size_ < longestName && text[size_] != L'\0' && text[size_] < 128) {
      letters_[size_] = static_cast<char>(text[size_]);
      ++size_;
    }
    if (size_ == longestName || text[size_] != L'\0') size_ = 0;
  }

  [[nodiscard]] std::string_view view() const { return {letters_.data(), size_}; }

 private:
  std::array<char, longestName> letters_;  // filled as far as size_ says
  std::size_t size_ = 0;
};

/// Whether a host may ask that of a method or a property. Script hosts ask for a call and for reading at once
/// when a value is wanted; what asks for writing beside anything else means writing.
bool mayBeAsked(const Method& method, WORD flags) {
  if ((flags & DISPATCH_PROPERTYPUT) != 0) return method.put != nullptr;
  return (flags & (method.kind == Kind::method ? DISPATCH_METHOD : DISPATCH_PROPERTYGET)) != 0;
}

void describe(const RuntimeError& error, EXCEPINFO& exception) {
  exception = EXCEPINFO{};
  exception.scode = runtimeErrorBase + error.number();
  exception.bstrSource = newText(identity::progId);
  exception.bstrDescription = newText(error.what());
}

/// Runs a step of `Invoke`: a run-time error is told to the host.
template <class Step>
HRESULT described(EXCEPINFO* exception, Step step) noexcept {
  return guarded([&] {
    try {
      return step();
    } catch (const RuntimeError& error) {
      if (exception != nullptr) describe(error, *exception);
      return DISP_E_EXCEPTION;
    }
  });
}

}  // namespace

SerialObject::SerialObject() {
  addServerReference();
}

SerialObject::~SerialObject() {
  releaseServerReference();
}

HRESULT SerialObject::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (iid == IID_IUnknown || iid == IID_IDispatch || iid == interfaceId) {
    *object = static_cast<IDispatch*>(this);
  } else if (iid == IID_IProvideClassInfo) {
    *object = static_cast<IProvideClassInfo*>(this);
  } else {
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG SerialObject::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT SerialObject::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT SerialObject::GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  return guarded([=] { return typeInfo(interfaceId, info); });
}

HRESULT SerialObject::GetClassInfo(ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  return guarded([=] { return typeInfo(classId, info); });
}

HRESULT SerialObject::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID /*locale*/,
                                    DISPID* ids) {
  if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
  std::fill_n(ids, count, DISPID_UNKNOWN);
  if (std::find(names, names + count, nullptr) != names + count) return DISP_E_TYPEMISMATCH;
  const Method* const method = findMethod(Name(names[0]).view());
  if (method == nullptr) return DISP_E_UNKNOWNNAME;
  ids[0] = method->id;
  bool allKnown = true;
  for (UINT i = 1; i < count; ++i) {
    const auto parameter = findParameter(*method, Name(names[i]).view());
    if (parameter) ids[i] = static_cast<DISPID>(*parameter);
    allKnown = allKnown && parameter;
  }
  return allKnown ? S_OK : DISP_E_UNKNOWNNAME;
}

HRESULT SerialObject::Invoke(DISPID id, REFIID reserved, LCID /*locale*/, WORD flags, DISPPARAMS* passed,
                             VARIANT* result, EXCEPINFO* exception, UINT* argumentAtFault) {
  if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (passed == nullptr) return E_INVALIDARG;
  const Method* const method = findMethod(static_cast<int>(id));
  if (method == nullptr || !mayBeAsked(*method, flags)) return DISP_E_MEMBERNOTFOUND;
  // What runs of the host's meanwhile, its message loop or an object's default property, may drop the last
  // reference to this object.
  AddRef();
  struct Hold {
    SerialObject* object;
    ~Hold() { object->Release(); }
  } const hold{this};
  return described(exception, [&] {
    return (flags & DISPATCH_PROPERTYPUT) != 0 ? put(*method, *passed, argumentAtFault)
                                               : call(*method, *passed, result, argumentAtFault);
  });
}

HRESULT SerialObject::call(const Method& method, const DISPPARAMS& passed, VARIANT* result,
                           UINT* argumentAtFault) {
  if (method.kind == Kind::property && passed.cNamedArgs > 0) return DISP_E_NONAMEDARGS;
  HostCall call(method, passed);
  HRESULT outcome = call.take();
  if (SUCCEEDED(outcome)) outcome = call.run(serial_, result);
  call.reportFault(argumentAtFault);
  return outcome;
}

HRESULT SerialObject::put(const Method& method, const DISPPARAMS& passed, UINT* argumentAtFault) {
  if (passed.cArgs != 1) return DISP_E_BADPARAMCOUNT;
  const bool named = passed.cNamedArgs > 0;
  if (named && (passed.cNamedArgs != 1 || passed.rgdispidNamedArgs[0] != DISPID_PROPERTYPUT)) {
    return DISP_E_NONAMEDARGS;
  }
  Method setter{.slots = {Parameter{.type = method.result}}, .count = 1};
  DISPPARAMS unnamed{.rgvarg = passed.rgvarg, .cArgs = 1};
  HostCall call(setter, unnamed);
  const HRESULT outcome = call.take();
  if (SUCCEEDED(outcome)) method.put(serial_, call.value(0));
  call.reportFault(argumentAtFault);
  return outcome;
}

}  // namespace velk::com
