#pragma once

#include <optional>
#include <string>
#include <vector>

/// Texts that the system hands over or takes, as UTF-8 on every system.
namespace velk::cli {

/// The words of the command line, the program's name first.
std::vector<std::string> commandLine(int argc, char** argv);

/// A variable of the environment; none when it is not set.
std::optional<std::string> environment(const char* name);

/// Lets consoles show UTF-8. Returns what `resetConsole` takes to undo that: a console goes on when the
/// program has ended.
unsigned setUtf8Console();
void resetConsole(unsigned before);

/// Carries a program's `main`, which throws nothing, out with its words in UTF-8 and a console that shows it.
template <class Main>
int withUtf8(int argc, char** argv, Main main) {
  std::vector<std::string> words = commandLine(argc, argv);
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  const unsigned before = setUtf8Console();
  const int status = main(static_cast<int>(words.size()), pointers.data());
  resetConsole(before);
  return status;
}

}  // namespace velk::cli
