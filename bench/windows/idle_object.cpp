// The least that a script can call: an automation object that gives the byte 4, whatever it is asked. What a
// call of it costs is the script host's own.
#include <windows.h>
// The interfaces need the base types first.
#include <oaidl.h>

namespace {

constexpr GUID classId{0x875152BF, 0xF6DD, 0x40FD, {0xAE, 0x2A, 0x9C, 0x84, 0xFF, 0x5C, 0x67, 0x05}};

/// Both live as long as the file is loaded: nobody counts their references.
template <class Interface>
class Permanent : public Interface {
 public:
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

 protected:
  template <class Asked>
  HRESULT give(Asked& object, REFIID iid, REFIID own, void** found) {
    const bool known = iid == IID_IUnknown || iid == own;
    *found = known ? &object : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
};

class IdleObject final : public Permanent<IDispatch> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** found) override {
    return give(*this, iid, IID_IDispatch, found);
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID* ids) override {
    *ids = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                   UINT*) override {
    if (result == nullptr) return S_OK;
    result->vt = VT_UI1;
    result->bVal = 4;
    return S_OK;
  }
};

class IdleFactory final : public Permanent<IClassFactory> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** found) override {
    return give(*this, iid, IID_IClassFactory, found);
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
    static IdleObject idle;
    return idle.QueryInterface(iid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

}  // namespace

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** object) {
  static IdleFactory factory;
  return id == classId ? factory.QueryInterface(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
  return S_FALSE;
}
