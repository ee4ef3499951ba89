/// Writes first inputs below a folder for the targets that take calls: those of calls.txt over each link.

#include <filesystem>
#include <fstream>

#include "cli/shared/escapes.h"
#include "support/bench.h"
#include "support/calls.h"

namespace velk::fuzz {
namespace {

void write(const std::filesystem::path& folder, int number, const Bytes& input) {
  std::ofstream(folder / ("call-" + std::to_string(number)), std::ios::binary) << input;
}

void make(const std::filesystem::path& root) {
  const std::filesystem::path sources(VELK_FUZZ_SOURCES);
  for (const auto& target : std::filesystem::directory_iterator(sources / "regressions")) {
    std::filesystem::create_directories(root / target.path().filename());  // the fuzzer asks for it
  }
  std::ifstream calls(sources / "calls.txt");
  int count = 0;
  for (std::string words; std::getline(calls, words);) {
    const Bytes call = recipe(cli::unescaped(words));
    for (const LinkKind kind : simulator::allLinks) {
      const Bytes link(1, character(static_cast<int>(kind)));
      const Bytes length(1, character(static_cast<int>(call.size())));
      write(root / "dispatch", ++count, link + call);
      write(root / "links", count, link + '\0' + length + call + Bytes(8, '\0'));
    }
  }
}

}  // namespace
}  // namespace velk::fuzz

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  velk::fuzz::make(argv[1]);
  return 0;
}
