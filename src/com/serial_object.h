#pragma once

#include <windows.h>
// The automation types need the base types first.
#include <oaidl.h>
#include <ocidl.h>

#include "component/method.h"
#include "component/serial.h"

namespace velk::com {

/// A `Serial` as automation hosts see it. It belongs to the single-threaded apartment that it was made in.
class SerialObject final : public IDispatch, public IProvideClassInfo {
 public:
  SerialObject();
  SerialObject(const SerialObject&) = delete;
  SerialObject& operator=(const SerialObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override;

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* passed,
                                   VARIANT* result, EXCEPINFO* exception, UINT* argumentAtFault) override;

  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override;

 private:
  ~SerialObject();

  HRESULT call(const Method& method, const DISPPARAMS& passed, VARIANT* result, UINT* argumentAtFault);
  HRESULT put(const Method& method, const DISPPARAMS& passed, UINT* argumentAtFault);

  // Not atomic: the class is apartment-threaded, so that only one thread ever holds this object itself.
  ULONG references_ = 1;
  Serial serial_;
};

}  // namespace velk::com
