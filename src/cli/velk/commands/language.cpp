#include <array>

#include "cli/velk/commands/command.h"
#include "cli/velk/connection/expect_done.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/transfer.h"
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

/// Whether the controller has the display texts of a language.
bool stands(Serial& serial, const std::string& code) {
  constexpr Byte size = 16;
  Byte slot = controller::firstText;
  for (const std::string_view text : *controller::textsOf(code)) {
    if (readMemory(serial, controller::displayText(slot++), size) != padded(text, size)) return false;
  }
  return true;
}

struct LanguageOptions : LinkedOptions {
  std::string code;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("CODE", code, "The language's letter").required().oneOf({"N", "E", "F", "D", "B", "P", "S"});
  }
};

int carryOutLanguage(const LanguageOptions& options) {
  const auto connection = open(options.link.required());
  Serial& serial = connection->serial();
  const auto write = [&] { return std::get<Byte>(convert(serial.Ctl_Lang(options.code), Type::byte)); };
  expectDone(retry().write(write, [&] { return stands(serial, options.code); }), "writing the display texts");
  if (options.json) std::cout << Json{{"language", options.code}} << '\n';
  return success;
}

}  // namespace

void addLanguage(const CommandLine& velk, Job& job) {
  addCommand<LanguageOptions>(velk, job, "language", "Write the display texts of a language",
                              "  velk language --simulate E\n" + listOfLanguages(), carryOutLanguage);
}

}  // namespace velk::cli
