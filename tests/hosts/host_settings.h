#pragma once

#include <windows.h>
// The interface needs the base types first.
#include <objidl.h>

#include <cfloat>

namespace hosts {

/// Has the processor stop the program at an invalid operation, as some hosts do.
class InvalidOperationsStop {
 public:
  InvalidOperationsStop() { set(0); }
  ~InvalidOperationsStop() { set(_EM_INVALID); }
  InvalidOperationsStop(const InvalidOperationsStop&) = delete;
  InvalidOperationsStop& operator=(const InvalidOperationsStop&) = delete;

 private:
  static void set(unsigned masked) {
    _clearfp();
    _controlfp(masked, _EM_INVALID);
  }
};

/// Counts the blocks of memory that texts and arrays of automation have in use, while it lives.
class MallocSpy final : public IMallocSpy {
 public:
  MallocSpy() {
    // Blocks that are kept for the next text would count as in use.
    HMODULE const automation = GetModuleHandleW(L"oleaut32.dll");
    reinterpret_cast<void(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(automation, "SetOaNoCache")))();
    CoRegisterMallocSpy(this);
  }
  ~MallocSpy() { CoRevokeMallocSpy(); }
  MallocSpy(const MallocSpy&) = delete;
  MallocSpy& operator=(const MallocSpy&) = delete;

  [[nodiscard]] long blocks() const { return blocks_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = this;
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

  SIZE_T STDMETHODCALLTYPE PreAlloc(SIZE_T size) override { return size; }
  void* STDMETHODCALLTYPE PostAlloc(void* block) override { return changed(block, +1); }
  void* STDMETHODCALLTYPE PreFree(void* block, BOOL) override { return changed(block, -1); }
  void STDMETHODCALLTYPE PostFree(BOOL) override {}
  SIZE_T STDMETHODCALLTYPE PreRealloc(void* block, SIZE_T size, void** same, BOOL) override {
    *same = changed(block, -1);
    return size;
  }
  void* STDMETHODCALLTYPE PostRealloc(void* block, BOOL) override { return changed(block, +1); }
  void* STDMETHODCALLTYPE PreGetSize(void* block, BOOL) override { return block; }
  SIZE_T STDMETHODCALLTYPE PostGetSize(SIZE_T size, BOOL) override { return size; }
  void* STDMETHODCALLTYPE PreDidAlloc(void* block, BOOL) override { return block; }
  int STDMETHODCALLTYPE PostDidAlloc(void*, BOOL, int outcome) override { return outcome; }
  void STDMETHODCALLTYPE PreHeapMinimize() override {}
  void STDMETHODCALLTYPE PostHeapMinimize() override {}

 private:
  void* changed(void* block, long by) {
    if (block != nullptr) blocks_ += by;
    return block;
  }

  long blocks_ = 0;
};

}  // namespace hosts
