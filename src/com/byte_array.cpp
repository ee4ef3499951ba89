#include "com/byte_array.h"

#include <algorithm>

#include "values/runtime_error.h"

namespace velk::com {
namespace {

/// The memory of an array, which is locked meanwhile.
class Access {
 public:
  explicit Access(SAFEARRAY* array) : array_(array), outcome_(SafeArrayAccessData(array, &data_)) {}
  ~Access() {
    if (SUCCEEDED(outcome_)) SafeArrayUnaccessData(array_);
  }
  Access(const Access&) = delete;
  Access& operator=(const Access&) = delete;

  [[nodiscard]] HRESULT outcome() const { return outcome_; }
  [[nodiscard]] char* bytes() const { return static_cast<char*>(data_); }

 private:
  SAFEARRAY* array_;
  void* data_ = nullptr;
  HRESULT outcome_;
};

bool isListOfBytes(SAFEARRAY* array) {
  return SafeArrayGetDim(array) == 1 && SafeArrayGetElemsize(array) == 1;
}

HRESULT resize(SAFEARRAY* array, ULONG size) {
  constexpr USHORT fixed = FADF_AUTO | FADF_STATIC | FADF_EMBEDDED | FADF_FIXEDSIZE;
  if ((array->fFeatures & fixed) != 0) return DISP_E_ARRAYISLOCKED;
  SAFEARRAYBOUND bound{size, array->rgsabound[0].lLbound};
  return SafeArrayRedim(array, &bound);
}

}  // namespace

Bytes bytesOf(SAFEARRAY* array) {
  if (array == nullptr) return {};
  if (!isListOfBytes(array)) throw RuntimeError(RuntimeError::typeMismatch);
  const Access access(array);
  if (FAILED(access.outcome())) throw RuntimeError(RuntimeError::typeMismatch);
  return {access.bytes(), array->rgsabound[0].cElements};
}

HRESULT storeBytes(const Bytes& bytes, SAFEARRAY*& array) {
  const auto size = static_cast<ULONG>(bytes.size());
  if (array == nullptr) {
    // Not as a vector, which is of fixed size: the next result, or the owner, may want another one.
    SAFEARRAYBOUND bound{size, 0};
    array = SafeArrayCreate(VT_UI1, 1, &bound);
    if (array == nullptr) return E_OUTOFMEMORY;
  }
  if (!isListOfBytes(array)) return DISP_E_TYPEMISMATCH;
  if (array->rgsabound[0].cElements != size) {
    if (const HRESULT outcome = resize(array, size); FAILED(outcome)) return outcome;
  }
  const Access access(array);
  if (SUCCEEDED(access.outcome())) std::copy(bytes.begin(), bytes.end(), access.bytes());
  return access.outcome();
}

}  // namespace velk::com
