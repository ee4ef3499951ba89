// C++, late bound: lists the mode of every output; methods are looked up by name while the program runs.
//   late_bound HOST PORT PASSWORD
// Build: x86_64-w64-mingw32-g++-posix -std=c++20 -static late_bound.cpp -lole32 -loleaut32 -luuid

#include <cstdio>
#include <cstdlib>

#include "dispatch.h"

namespace {

constexpr int outputs = 99;

int call(IDispatch* object, const wchar_t* name, const std::vector<VARIANT>& arguments) {
  auto* text = const_cast<LPOLESTR>(name);
  DISPID id = DISPID_UNKNOWN;
  if (FAILED(object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id))) {
    throw std::runtime_error("the component lacks a method");
  }
  return ::call(object, id, arguments);
}

int list(IDispatch* serial, char** words) {
  // The port is an Integer: above 32767 it is passed as a negative number.
  const long port = static_cast<short>(std::atoi(words[2]));
  int result =
      call(serial, L"OpenTCP", {argument(ByteText(words[1])), argument(port), argument(ByteText(words[3]))});
  const ByteText read("R");
  for (int output = 1; result == 0 && output <= outputs; ++output) {
    ByteText mode;
    ByteText items;
    short count = 0;  // the mode alone
    result = call(serial, L"Ctl_Param",
                  {argument(read), argument(output), reference(mode), reference(items), reference(count)});
    if (result == 0 && !mode.bytes().empty()) std::printf("output %d: %s\n", output, mode.bytes().c_str());
  }
  call(serial, L"CloseTCP", {});
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: late_bound HOST PORT PASSWORD\n", stderr);
    return 2;
  }
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  try {
    IDispatch* const serial = create(L"VelkCom.Serial");
    const int result = list(serial, argv);
    serial->Release();
    if (result != 0) std::fprintf(stderr, "late_bound: result %d\n", result);
    return result == 0 ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "late_bound: %s\n", error.what());
    return 1;
  }
}
