#include "cli/shared/escapes.h"
#include "cli/velk/commands/change.h"
#include "cli/velk/connection/transfer.h"
#include "cli/velk/things/words.h"
#include "parameters/ctl_irtext.h"

namespace velk::cli {
namespace {

struct InfraredTextOptions : ChangeOptions {
  int number = 0;
  std::string text;

  void declare(const CommandLine& line) {
    ChangeOptions::declare(line);
    line.option("N", number, "Number of the text").required().range(0, 63);
    line.option("TEXT", text, "Up to 16 characters, with \\xNN for a byte").required();
  }
};

constexpr std::size_t longest = 16;

int carryOutInfraredText(const InfraredTextOptions& options) {
  const Bytes text = unescaped(options.text);
  if (text.size() > longest) throw std::invalid_argument("the text has more than 16 characters");
  const auto connection = open(options.link.required());
  Serial& serial = connection->serial();
  const auto number = static_cast<Byte>(options.number);
  const std::string title = "infrared text " + std::to_string(number);
  const auto shownAs = [&](const Bytes& stored) {
    const std::string_view name = withoutFill(stored);
    return Shown{{{"text", shown(name)}}, {{"text", options.number}, {"value", utf8OfBytes(name)}}};
  };
  const auto read = [&] {
    return shownAs(readTransfer(serial, parameters::infraredText(number), longest, title));
  };
  return carryOut(options, {.title = title,
                            .before = read(),
                            .after = shownAs(padded(text, longest)),
                            .write = [&] { return serial.Ctl_IRText("W", number, text); },
                            .read = read});
}

}  // namespace

void addInfraredText(const CommandLine& velk, Job& job) {
  addCommand<InfraredTextOptions>(velk, job, "ir-text", "Store an infrared text",
                                  "  velk ir-text --simulate 3 \"Television\"\n", carryOutInfraredText);
}

}  // namespace velk::cli
