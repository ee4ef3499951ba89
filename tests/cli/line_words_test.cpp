#include "cli/shared/line_words.h"

#include <gtest/gtest.h>

namespace velk::cli {
namespace {

using Words = std::vector<std::string>;

TEST(LineWords, StandAsShellsReadThem) {
  const struct {
    const char* line;
    Words words;
    char open;
    bool endsInWord;
    std::size_t lastWord;
  } rows[] = {
      {"", {}, 0, false, 0},
      {" # a 'comment", {}, 0, false, 13},
      {"a b#c #d", {"a", "b#c"}, 0, false, 8},
      {"output 5\tname \r", {"output", "5", "name"}, 0, false, 15},
      {"name 'a b'", {"name", "a b"}, 0, true, 5},
      {R"('\x1e\' "\x1e\\\"\$" \x1e\ )", {R"(\x1e\)", R"(\x1e\"$)", "x1e "}, 0, true, 21},
      {"'' \"\"x 'a'\"b\"c", {"", "x", "abc"}, 0, true, 7},
      {"name 'a \"#", {"name", "a \"#"}, '\'', true, 5},
      {"name \"a '", {"name", "a '"}, '"', true, 5},
      {R"(name a\)", {"name", "a"}, '\\', true, 5},
      {R"("\)", {""}, '\\', true, 0},
  };
  for (const auto& row : rows) {
    const LineWords found = wordsOf(row.line);
    EXPECT_EQ(found.words, row.words) << row.line;
    EXPECT_EQ(found.open, row.open) << row.line;
    EXPECT_EQ(found.endsInWord, row.endsInWord) << row.line;
    EXPECT_EQ(found.lastWord, row.lastWord) << row.line;
  }
}

TEST(LineWords, AreQuotedWhereTheyNeedIt) {
  const struct {
    const char* word;
    char open;
    bool isWhole;
    const char* text;
  } rows[] = {
      {"Hall", 0, true, "Hall"},       {"a b", 0, true, "'a b'"},
      {"a b", 0, false, "'a b"},       {"#1", 0, true, "'#1'"},
      {R"(a\)", 0, true, R"('a\')"},   {"o'clock $1", 0, true, R"("o'clock \$1")"},
      {"Hall", '"', true, "\"Hall\""}, {"a\"b", '"', false, R"("a\"b)"},
      {"Hall", '\'', false, "'Hall"},  {"o'clock", '\'', true, "\"o'clock\""},
  };
  for (const auto& row : rows) EXPECT_EQ(quoted(row.word, row.open, row.isWhole), row.text) << row.word;
}

}  // namespace
}  // namespace velk::cli
