// C++, early bound: saves an output to a file, or writes it back, with the class that velkcom.h declares.
//   early_bound HOST PORT PASSWORD save|restore OUTPUT FILE
// Build: x86_64-w64-mingw32-g++-posix -static early_bound.cpp -lole32 -loleaut32 -luuid, or with Visual C++ (not tried)
// cl /EHsc early_bound.cpp ole32.lib oleaut32.lib uuid.lib
// velkcom.h lies in the folder "bindings" beside the examples, or here.

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>

#include "velkcom.h"

namespace {

/// The file holds the two letters of the mode, then the items as they are.
constexpr std::size_t modeLength = 2;

int save(VelkCom::Serial& serial, unsigned char output, const char* file) {
  std::string mode;
  std::string items;
  short count = 255;  // all
  const int result = serial.Ctl_Param("R", output, mode, &items, &count);
  if (result != VelkCom::ResultSuccess) return result;
  std::ofstream(file, std::ios::binary) << mode << items;
  std::cout << "saved output " << int{output} << ": mode " << mode << ", " << count << " items\n";
  return 0;
}

int restore(VelkCom::Serial& serial, unsigned char output, const char* file) {
  std::ifstream stream(file, std::ios::binary);
  const std::string saved{std::istreambuf_iterator<char>(stream), {}};
  if (saved.size() < modeLength) throw std::runtime_error("the file holds no output");
  std::string mode = saved.substr(0, modeLength);
  std::string items = saved.substr(modeLength);
  short count = static_cast<short>(items.size());
  const int result = serial.Ctl_Param("W", output, mode, &items, &count);
  if (result == VelkCom::ResultSuccess) std::cout << "restored output " << int{output} << '\n';
  return result;
}

int run(char** words) {
  VelkCom::Serial serial;
  std::string password = words[3];
  // The port is an Integer: above 32767 it is passed as a negative number.
  int result = serial.OpenTCP(words[1], static_cast<short>(std::atoi(words[2])), &password);
  if (result == VelkCom::ResultSuccess) {
    const bool saves = std::string(words[4]) == "save";
    result = (saves ? save : restore)(serial, static_cast<unsigned char>(std::atoi(words[5])), words[6]);
  }
  serial.CloseTCP();
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 7) {
    std::cerr << "usage: early_bound HOST PORT PASSWORD save|restore OUTPUT FILE\n";
    return 2;
  }
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  try {
    const int result = run(argv);
    if (result != 0) std::cerr << "early_bound: result " << result << '\n';
    return result == 0 ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << "early_bound: " << error.what() << '\n';
    return 1;
  }
}
