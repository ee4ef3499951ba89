/// Writes the first inputs of every target below a folder, made from real traffic: what a host sends over
/// each link, calls as they are made, the house as an image.

#include <filesystem>
#include <fstream>
#include <sstream>

#include "simulator/house.h"
#include "simulator/house_modules.h"
#include "simulator/image.h"
#include "support/calls.h"
#include "support/links.h"

namespace velk::fuzz {
namespace {

using Arguments = std::vector<Value>;
using Texts = std::vector<std::string>;

struct Sample {
  std::string_view method;
  Arguments arguments;
};

std::vector<Sample> samples() {
  const auto text = [](std::string value) { return Value(std::move(value)); };
  const auto number = [](int value) { return Value(static_cast<Byte>(value)); };
  const auto integer = [](int value) { return Value(static_cast<std::int16_t>(value)); };
  const Value none;
  return {
      {"ReadCom", {number(16), number(5), number(16), text("V"), number(0)}},
      {"WriteCom", {number(1), number(5), number(1), text("V"), text("\5"), number(0)}},
      {"TranCeiv", {number(32), number(5), number(1), text(""), number(0), number(2)}},
      {"TranceivTcp", {integer(1), integer(1), number(0), number(255), text("/\2\40\5\1")}},
      {"Ctl_Param", {text("R"), number(5), text(""), text(""), integer(255), number(0)}},
      {"Ctl_Param", {text("W"), number(5), text("RO"), text("\5\5"), integer(2), number(0)}},
      {"Ctl_IRText", {text("W"), number(3), text("Television")}},
      {"Ctl_Init", {text("R"), text(""), number(13), number(0)}},
      {"Ctl_Init", {text("W"), text("\x1a\7\5\1\24\36\1"), number(7), number(6)}},
      {"Ctl_Soft", {text("R"), number(5), number(0), number(0), text(""), number(0), number(0)}},
      {"Ctl_Soft", {text("W"), number(5), number(0), number(9), text("O"), number(1), number(2)}},
      {"Ctl_Soft", {text("W"), number(5), number(0), number(101), text("I"), number(1), number(2)}},
      {"Ctl_Lang", {text("E")}},
      {"Preset", {text("R"), number(1), text(""), number(8), text("")}},
      {"Preset",
       {text("W"), number(1), text("Evening         "), number(3), text("abcd"), number(9), number(0)}},
      {"Simulation", {text("R"), number(1), number(20), text("")}},
      {"Simulation", {text("W"), number(1), number(20), text("\12\24abc")}},
      {"SwitchTime", {text("R"), number(0), number(0), number(0), number(0), text("")}},
      {"SwitchTime", {text("W"), number(0), number(3), number(20), number(30), text("\x65\1")}},
      {"ModeToStr", {number(4), number(9)}},
      {"RXModuleVersie", {text("090255")}},
      {"Module", {text("R"), text("090255"), text("")}},
      {"Module", {text("W"), text("090255"), text(std::string(16, '\1'))}},
      {"Module", {text("W"), text("060001"), text(std::string(74, '\0'))}},
      {"Module", {text("R"), text("950010"), text(""), number(2)}},
      {"Module", {text("W"), text("700100"), text(std::string(112, '\1'))}},
      {"Module", {text("R"), text("980500"), text("")}},
      {"Sample", {text("R"), text("980500"), number(0), number(0), text("")}},
      {"Sample", {text("W"), text("980500"), number(0), number(1), text(std::string(128, 's'))}},
      {"GSMtext", {text("R"), text("930100"), number(1), text("")}},
      {"GSMtext", {text("W"), text("930100"), number(1), text("a message")}},
      {"ConvertRXData", {text("090255"), text(std::string(16, '\4'))}},
      {"ConvertTXSub", {text("abc"), number(2)}},
      {"LdZr", {Value(-7.5), number(3)}},
      {"SoortETH", {}},
      {"ConvertErr", {Value(std::int32_t{40006})}},
      {"Minimum", {Value(true), none}},
  };
}

class Corpus {
 public:
  explicit Corpus(std::filesystem::path root) : root_(std::move(root)) {}

  void add(const std::string& target, const Bytes& input) {
    std::filesystem::create_directories(root_ / target);
    std::ofstream(root_ / target / ("seed-" + std::to_string(++count_)), std::ios::binary) << input;
  }

 private:
  std::filesystem::path root_;
  int count_ = 0;
};

/// Keeps what the host sends, in the form that the target `sessions` takes.
class Recorder final : public simulator::Peer {
 public:
  Recorder(std::unique_ptr<simulator::Peer> peer, Bytes& record) : peer_(std::move(peer)), record_(record) {}

  std::vector<simulator::Delivery> connected() override { return peer_->connected(); }
  std::vector<simulator::Delivery> received(std::string_view bytes) override {
    record_ += character(static_cast<int>(bytes.size()));
    record_ += bytes;
    return peer_->received(bytes);
  }

 private:
  std::unique_ptr<simulator::Peer> peer_;
  Bytes& record_;
};

Bytes trafficOf(LinkKind kind, const Bytes& recipe) {
  simulator::Controller controller(simulator::house());
  simulator::attachModules(controller);
  simulator::LoopbackHost host;
  host.transferTime = std::chrono::milliseconds(1);
  Serial serial(host);
  Bytes record(1, character(static_cast<int>(kind)));
  open(serial, host, kind, [&] { return std::make_unique<Recorder>(makeSession(kind, controller), record); });
  Input input(reinterpret_cast<const std::uint8_t*>(recipe.data()), recipe.size());
  call(serial, input, false);
  constexpr std::size_t longest = 512;
  return record.substr(0, longest);
}

Bytes withLength(const Bytes& text) {
  return character(static_cast<int>(text.size())) + text;
}

void addCalls(Corpus& corpus) {
  for (const Sample& sample : samples()) {
    const Bytes bytes = recipe(*findMethod(sample.method), sample.arguments);
    for (const LinkKind kind : allLinks) {
      const Bytes first(1, character(static_cast<int>(kind)));
      corpus.add("dispatch", first + bytes);
      corpus.add("links", first + '\0' + withLength(bytes) + Bytes(8, '\0'));
      corpus.add("sessions", trafficOf(kind, bytes));
    }
  }
}

void addReplies(Corpus& corpus) {
  for (const LinkKind kind : allLinks) {
    for (Byte fault = 0; fault < 8; ++fault) {
      corpus.add("recovery", Bytes{character(static_cast<int>(kind)), '\20', '\5', '\20', '\0',
                                   character(fault), '\2', '\3', 'a', 'b', 'c'});
    }
  }
  constexpr std::string_view welcome = "Welcome to VELK TCP/IP";
  const Bytes login{'V', 'E', 'L', 'K', '\0', '\1', '\0', '\1', '\0', '\xf0', '\0', '\0'};
  for (const Bytes& greeting : {Bytes(welcome), "VELK-S: " + Bytes(welcome), Bytes("Welcome")}) {
    corpus.add("greeting",
               withLength("pass") + '\2' + '\0' + withLength(greeting) + '\1' + withLength(login));
  }
}

void addTexts(Corpus& corpus) {
  for (const std::string_view text :
       {"status=7@3", "late=500@2-4", "silent@*", "foreign@5-", R"(a\x00\\b)", "SerAddress=3", "SoortETH=S",
        "Ctl_Param\nR\n5\n\nOffset=1", "Preset\nW\n1\nEvening\n3\nData=\\x01\\x02", "LdZr\n-7\n3",
        "IfSetBit\n&H1F\n 2"}) {
    corpus.add("texts", Bytes(text));
  }
  std::ostringstream image;
  writeImage(image, simulator::house());
  constexpr std::size_t start = 600;
  corpus.add("images", image.str().substr(0, image.str().find('\n', start)) + "\nend\n");
  corpus.add("images",
             "velk-memory 1\n# a comment\n\nV  FFF8 00 05 23 10\nH+ 000A 54\nV+ FFFF 01 02\r\nend\n");
}

}  // namespace
}  // namespace velk::fuzz

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  velk::fuzz::Corpus corpus(argv[1]);
  velk::fuzz::addCalls(corpus);
  velk::fuzz::addReplies(corpus);
  velk::fuzz::addTexts(corpus);
  return 0;
}
