#pragma once

#include <windows.h>
// The interfaces need the base types first.
#include <unknwn.h>

namespace velk::com {

/// Makes objects of class `Serial`. There is one factory, which is never destroyed; references to it keep the
/// component loaded.
class ClassFactory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;

  /// No aggregation: CLASS_E_NOAGGREGATION with an outer object.
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;
};

ClassFactory& classFactory();

}  // namespace velk::com
