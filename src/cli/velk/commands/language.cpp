#include <array>

#include "cli/shared/escapes.h"
#include "cli/velk/commands/change.h"
#include "cli/velk/connection/transfer.h"
#include "cli/velk/things/words.h"
#include "controller/ctl_lang.h"
#include "controller/languages.h"

namespace velk::cli {
namespace {

struct LanguageName {
  const char* code;
  const char* name;
};

constexpr std::array languages{
    LanguageName{"N", "Dutch"},
    LanguageName{"E", "English"},
    LanguageName{"F", "French"},
    LanguageName{"D", "German"},
    LanguageName{"B", "Portuguese of Brazil"},
    LanguageName{"P", "Portuguese"},
    LanguageName{"S", "Spanish"},
};

std::string listOfLanguages() {
  std::string text = "\nLanguages:\n";
  for (const LanguageName& language : languages)
    text.append("  ").append(language.code).append("  ").append(language.name).append("\n");
  return text;
}

/// What stands in the slots from the first on, one text each.
using DisplayTexts = std::vector<Bytes>;

constexpr std::size_t longestDisplayText = 16;

DisplayTexts readDisplayTexts(Serial& serial) {
  DisplayTexts texts;
  for (int slot = controller::firstText; slot <= controller::lastText; ++slot) {
    texts.push_back(readMemory(serial, controller::displayText(static_cast<Byte>(slot)), longestDisplayText));
  }
  return texts;
}

Shown shownAs(const DisplayTexts& texts, const std::string& code) {
  Details details;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    details.push_back({std::to_string(controller::firstText + i), shown(withoutFill(texts[i]))});
  }
  return {std::move(details), {{"language", code}}};
}

struct LanguageOptions : ChangeOptions {
  std::string code;

  void declare(const CommandLine& line) {
    ChangeOptions::declare(line);
    line.option("CODE", code, "The language's letter").required().oneOf({"N", "E", "F", "D", "B", "P", "S"});
  }
};

int carryOutLanguage(const LanguageOptions& options) {
  const auto connection = open(options.link.required());
  Serial& serial = connection->serial();
  const auto read = [&] { return shownAs(readDisplayTexts(serial), options.code); };
  DisplayTexts wanted;
  for (const std::string_view text : *controller::textsOf(options.code))
    wanted.push_back(padded(text, longestDisplayText));
  return carryOut(
      options, {.title = "language " + options.code,
                .before = read(),
                .after = shownAs(wanted, options.code),
                .write = [&] { return std::get<Byte>(convert(serial.Ctl_Lang(options.code), Type::byte)); },
                .read = read});
}

}  // namespace

void addLanguage(const CommandLine& velk, Job& job) {
  addCommand<LanguageOptions>(velk, job, "language", "Write the display texts of a language",
                              "  velk language --simulate E\n" + listOfLanguages(), carryOutLanguage);
}

}  // namespace velk::cli
