/// Writes first inputs below a folder for the targets that take calls or traffic: the calls of calls.txt over
/// each link, and what a host sends for them.

#include <filesystem>
#include <fstream>

#include "cli/escapes.h"
#include "support/bench.h"
#include "support/calls.h"

namespace velk::fuzz {
namespace {

Bytes withLength(std::string_view text) {
  return character(static_cast<int>(text.size())) + Bytes(text);
}

/// Keeps what the host sends, in the form that the target `sessions` takes.
class Recorder final : public simulator::Peer {
 public:
  Recorder(std::unique_ptr<simulator::Peer> peer, Bytes& record) : peer_(std::move(peer)), record_(record) {}

  std::vector<simulator::Delivery> connected() override { return peer_->connected(); }
  std::vector<simulator::Delivery> received(std::string_view bytes) override {
    record_ += withLength(bytes);
    return peer_->received(bytes);
  }

 private:
  std::unique_ptr<simulator::Peer> peer_;
  Bytes& record_;
};

Bytes trafficOf(LinkKind kind, const Bytes& recipe) {
  constexpr std::size_t longest = 512;
  Bench bench;
  Bytes record;
  bench.open(kind, [&](auto session) { return std::make_unique<Recorder>(std::move(session), record); });
  Input input(recipe);
  call(bench.serial, input, false);
  return record.substr(0, longest);
}

void write(const std::filesystem::path& folder, const std::string& name, const Bytes& input) {
  std::filesystem::create_directories(folder);
  std::ofstream(folder / name, std::ios::binary) << input;
}

void make(const std::filesystem::path& root) {
  std::ifstream calls(VELK_FUZZ_CALLS);
  int count = 0;
  for (std::string words; std::getline(calls, words);) {
    const Bytes call = recipe(cli::unescaped(words));
    for (const LinkKind kind : simulator::allLinks) {
      const Bytes link(1, character(static_cast<int>(kind)));
      const std::string name = "call-" + std::to_string(++count);
      write(root / "dispatch", name, link + call);
      write(root / "links", name, link + '\0' + withLength(call) + Bytes(8, '\0'));
      write(root / "sessions", name, link + trafficOf(kind, call));
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
