// C++, early bound: saves an output to a file, or writes it back. Methods are called by the dispatch ids of
// the type library, which never change, through a class with their types. Visual C++ writes such a class
// itself: #import "VelkCom.dll".
//   early_bound HOST PORT PASSWORD save|restore OUTPUT FILE
// Build: x86_64-w64-mingw32-g++-posix -std=c++20 -static early_bound.cpp -lole32 -loleaut32 -luuid

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>

#include "dispatch.h"

namespace {

/// The methods of `_Serial` that this program uses.
class Serial {
 public:
  Serial() : object_(create(L"VelkCom.Serial")) {}
  Serial(const Serial&) = delete;
  Serial& operator=(const Serial&) = delete;
  ~Serial() { object_->Release(); }

  int openTcp(const std::string& host, short port, const std::string& password) {
    return call(object_, 12, {argument(ByteText(host)), argument(port), argument(ByteText(password))});
  }

  int closeTcp() { return call(object_, 13, {}); }

  int param(const std::string& readOrWrite, int output, ByteText& mode, ByteText& items, short& count) {
    return call(object_, 32,
                {argument(ByteText(readOrWrite)), argument(output), reference(mode), reference(items),
                 reference(count)});
  }

 private:
  IDispatch* object_;
};

/// The file holds the two letters of the mode, then the items as they are.
constexpr std::size_t modeLength = 2;

int save(Serial& serial, int output, const std::string& file) {
  ByteText mode;
  ByteText items;
  short count = 255;  // all
  const int result = serial.param("R", output, mode, items, count);
  if (result != 0) return result;
  std::ofstream(file, std::ios::binary) << mode.bytes() << items.bytes();
  std::cout << "saved output " << output << ": mode " << mode.bytes() << ", " << count << " items\n";
  return 0;
}

int restore(Serial& serial, int output, const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::string saved{std::istreambuf_iterator<char>(stream), {}};
  if (saved.size() < modeLength) throw std::runtime_error("the file holds no output");
  ByteText mode(saved.substr(0, modeLength));
  ByteText items(saved.substr(modeLength));
  short count = static_cast<short>(saved.size() - modeLength);
  const int result = serial.param("W", output, mode, items, count);
  if (result == 0) std::cout << "restored output " << output << '\n';
  return result;
}

int run(char** words) {
  Serial serial;
  // The port is an Integer: above 32767 it is passed as a negative number.
  int result = serial.openTcp(words[1], static_cast<short>(std::atoi(words[2])), words[3]);
  if (result == 0) {
    const bool saves = std::string(words[4]) == "save";
    result = (saves ? save : restore)(serial, std::atoi(words[5]), words[6]);
  }
  serial.closeTcp();
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
