// The least that a script can call: an automation object that gives the byte 4 for any argument. What a call
// of it costs is the script host's own. Asked without an argument it gives seconds of a clock, since that of
// a script is too coarse for short measures.
#include <windows.h>
// The interfaces need the base types first.
#include <oaidl.h>

namespace {

constexpr GUID classId{0x875152BF, 0xF6DD, 0x40FD, {0xAE, 0x2A, 0x9C, 0x84, 0xFF, 0x5C, 0x67, 0x05}};

double seconds() {
  LARGE_INTEGER ticks;
  LARGE_INTEGER frequency;
  QueryPerformanceCounter(&ticks);
  QueryPerformanceFrequency(&frequency);
  return static_cast<double>(ticks.QuadPart) / static_cast<double>(frequency.QuadPart);
}

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
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS* passed, VARIANT* result,
                                   EXCEPINFO*, UINT*) override {
    if (result == nullptr) return S_OK;
    if (passed->cArgs == 0) {
      result->vt = VT_R8;
      result->dblVal = seconds();
      return S_OK;
    }
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
