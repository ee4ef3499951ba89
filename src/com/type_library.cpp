#include "com/type_library.h"

#include <oleauto.h>

#include "com/server.h"

namespace velk::com {

HRESULT typeInfo(REFGUID id, ITypeInfo** info) {
  ITypeLib* library = nullptr;
  HRESULT outcome = LoadTypeLibEx(modulePath().c_str(), REGKIND_NONE, &library);
  if (FAILED(outcome)) return outcome;
  outcome = library->GetTypeInfoOfGuid(id, info);
  library->Release();
  return outcome;
}

}  // namespace velk::com
