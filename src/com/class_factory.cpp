#include "com/class_factory.h"

#include "com/guarded.h"
#include "com/serial_object.h"
#include "com/server.h"

namespace velk::com {

HRESULT ClassFactory::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
  *object = static_cast<IClassFactory*>(this);
  AddRef();
  return S_OK;
}

ULONG ClassFactory::AddRef() {
  addServerReference();
  return 2;
}

ULONG ClassFactory::Release() {
  releaseServerReference();
  return 1;
}

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  return guarded([&] {
    auto* const serial = new SerialObject;
    const HRESULT outcome = serial->QueryInterface(iid, object);
    serial->Release();
    return outcome;
  });
}

HRESULT ClassFactory::LockServer(BOOL lock) {
  if (lock != FALSE) {
    addServerReference();
  } else {
    releaseServerReference();
  }
  return S_OK;
}

ClassFactory& classFactory() {
  static ClassFactory factory;
  return factory;
}

}  // namespace velk::com
