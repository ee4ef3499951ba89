#include "windows/calls.h"

#include <windows.h>
// The automation types need the base types first.
#include <oleauto.h>

#include <array>
#include <stdexcept>

#include "com/identifiers.h"
#include "component/methods.h"
#include "component/serial.h"

namespace velk::bench {
namespace {

constexpr int calls = 20'000;
constexpr int rounds = 15;

/// The value helpers as a C++ program would call them without COM.
class Helpers {
 public:
  virtual ~Helpers() = default;
  virtual Byte lowNibbleBit(Byte value) { return serial_.LowNibbleBit(value); }
  virtual Byte decToBcd(Byte number) { return serial_.DECtoBCD(number); }
  virtual Value ldZr(const Value& number, Byte length) { return serial_.LdZr(number, length); }

 private:
  Serial serial_;
};

/// The component from its file, without registration.
IDispatch* createObject() {
  const HMODULE module = LoadLibraryW(L"VelkCom.dll");
  using GetClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
  const auto entry = reinterpret_cast<GetClassObject>(
      reinterpret_cast<void*>(module == nullptr ? nullptr : GetProcAddress(module, "DllGetClassObject")));
  IClassFactory* factory = nullptr;
  IDispatch* object = nullptr;
  if (entry == nullptr ||
      FAILED(entry(com::classId, IID_IClassFactory, reinterpret_cast<void**>(&factory))) ||
      FAILED(factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&object)))) {
    throw std::runtime_error("no object of VelkCom.dll");
  }
  factory->Release();
  return object;
}

DISPID idOf(IDispatch& object, const wchar_t* name) {
  DISPID id = DISPID_UNKNOWN;
  auto* text = const_cast<LPOLESTR>(name);
  if (FAILED(object.GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id))) {
    throw std::runtime_error("an unknown name");
  }
  return id;
}

void invoke(IDispatch& object, DISPID id, DISPPARAMS& passed) {
  VARIANT result{};
  const HRESULT outcome =
      object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &passed, &result, nullptr, nullptr);
  if (FAILED(outcome)) throw std::runtime_error("Invoke failed");
  if (result.vt == VT_BSTR) VariantClear(&result);
}

template <class Body>
double nanosecondsEach(Body body) {
  const auto start = Clock::now();
  for (int i = 0; i < calls; ++i) body(i);
  return microsecondsSince(start) * 1000 / calls;
}

/// A way to call and what its rounds took.
template <class ViaId, class Virtual>
void compare(Figures& figures, const std::string& name, ViaId viaId, Virtual viaVirtual) {
  Samples ours;
  Samples theirs;
  for (int round = 0; round < rounds; ++round) {
    ours.push_back(nanosecondsEach(viaId));
    theirs.push_back(nanosecondsEach(viaVirtual));
  }
  figures["calls." + name + ".invoke"] = percentile(ours, 0.5);
  figures["calls." + name + ".virtual"] = percentile(theirs, 0.5);
}

VARIANT byteVariant(int value) {
  VARIANT variant{};
  variant.vt = VT_UI1;
  variant.bVal = static_cast<BYTE>(value);
  return variant;
}

void compareHelpers(Figures& figures, IDispatch& object) {
  Helpers own;
  Helpers* volatile reached = &own;  // keeps the calls virtual
  volatile Byte kept = 0;
  const auto viaId = [&object](const wchar_t* name) {
    return [&object, id = idOf(object, name)](int i) {
      VARIANT argument = byteVariant(i & 127);
      DISPPARAMS passed{.rgvarg = &argument, .cArgs = 1};
      invoke(object, id, passed);
    };
  };
  const auto number = [](int i) { return static_cast<Byte>(i & 127); };
  compare(figures, "LowNibbleBit", viaId(L"LowNibbleBit"),
          [&](int i) { kept = reached->lowNibbleBit(number(i)); });
  compare(figures, "DECtoBCD", viaId(L"DECtoBCD"), [&](int i) { kept = reached->decToBcd(number(i)); });
  const DISPID ldZr = idOf(object, L"LdZr");
  compare(
      figures, "LdZr",
      [&](int i) {
        std::array arguments{byteVariant(5), byteVariant(i & 127)};
        DISPPARAMS passed{.rgvarg = arguments.data(), .cArgs = 2};
        invoke(object, ldZr, passed);
      },
      [&](int i) {
        if (reached->ldZr(Value(number(i)), 5) == Value()) throw std::runtime_error("LdZr failed");
      });
}

void measureNames(Figures& figures, IDispatch& object) {
  std::vector<std::wstring> names;
  for (const Method& method : methods()) names.emplace_back(method.name.begin(), method.name.end());
  Samples samples;
  for (int round = 0; round < rounds; ++round) {
    samples.push_back(nanosecondsEach(
        [&](int i) { idOf(object, names[static_cast<std::size_t>(i) % names.size()].c_str()); }));
  }
  figures["calls.name"] = percentile(samples, 0.5);
}

}  // namespace

void measureCalls(Figures& figures) {
  IDispatch* const object = createObject();
  compareHelpers(figures, *object);
  measureNames(figures, *object);
  object->Release();
}

}  // namespace velk::bench
