#include "cli/shared/config_lines.h"

#include <gtest/gtest.h>

namespace velk::cli {
namespace {

/// The lines that are left, or what is wrong with one of them.
std::string outcomeOf(const std::string& text) {
  try {
    return checkedConfiguration(text);
  } catch (const std::invalid_argument& why) {
    return why.what();
  }
}

TEST(ConfigLines, WhatIsTakenForSomethingElseIsRefused) {
  const char* const form = "2: it is neither [section] nor name = value";
  const char* const quotes = "2: the quotes do not end, or not at its end";
  const struct {
    const char* text;
    const char* outcome;
  } rows[] = {
      {"", ""},
      {"\xEF\xBB\xBF[a] # c\r\n\r\n\tlink=\"b c\"  # 'd\r\n", "[a]\nlink = \"b c\"\n"},
      {"[a b.c]\nk = 'x\"'\n[d]\nk = 12", "[a b.c]\nk = 'x\"'\n[d]\nk = 12\n"},
      {"\n[a", "2: there is no ] at its end"},
      {"[", "1: there is no ] at its end"},
      {"[ ]", "1: between [ and ] stands a name without brackets and quotes"},
      {"[[a]]", "1: between [ and ] stands a name without brackets and quotes"},
      {"k = 1\n[a]", "1: no [section] stands in front of it"},
      {"[a]\nlink \"tcp://h:1\"", form},
      {"[a]\n= 1", form},
      {"[a]\nb.c = 1", form},
      {"[a]\n; c", form},
      {"[a]\nk =  # c", "2: there is no value"},
      {"[a]\nk = \"12", quotes},
      {"[a]\nk = \"", quotes},
      {"[a]\nk = 'a' b", quotes},
      {"[a]\nk = \"a\"b\"", R"(2: in quotes the quote is written \x22, or \x27)"},
      {"[a]\nk = 'a#b'", R"(2: in quotes "#" is written \x23)"},
      {"[a]\nk = a b", "2: a value of more than one word stands in quotes"},
      {"[a]\nk = [1]", "2: a value of more than one word stands in quotes"},
      {"[a]\nk = a\"", "2: a value of more than one word stands in quotes"},
      {"[a]\nk = 1\n[b]\nk = 1\nk = 2", "5: \"k\" stands in line 4, too"},
      {"[a]\n[b]\n[ a ]", "3: \"a\" stands in line 1, too"},
  };
  for (const auto& row : rows) EXPECT_EQ(outcomeOf(row.text), row.outcome) << row.text;
}

}  // namespace
}  // namespace velk::cli
