/// Runs a target over the files below the folder named on the command line: the regression test of builds
/// without a fuzzer.

#include <filesystem>
#include <fstream>
#include <iterator>

#include "support/target.h"

int main(int argc, char** argv) {
  int files = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(argc == 2 ? argv[1] : "")) {
    if (!entry.is_regular_file()) continue;
    std::ifstream in(entry.path(), std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    std::fprintf(stderr, "%s\n", entry.path().c_str());  // the last one told is the one that failed
    velk::fuzz::run({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    ++files;
  }
  return files > 0 ? 0 : 1;
}
