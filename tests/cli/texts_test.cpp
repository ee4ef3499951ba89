#include <gtest/gtest.h>

#include <stdexcept>

#include "cli/escapes.h"
#include "cli/tool.h"
#include "cli/words.h"

namespace velk::cli {
namespace {

/// The edges of what is a byte, of what is shown as itself, and of the lengths of UTF-8.
TEST(Texts, AreUtf8OutsideAndBytesInside) {
  struct Row {
    const char* typed;
    Bytes bytes;
    const char* shown;
    const char* data;
  };
  const std::vector<Row> rows{
      {"a~", "a~", "a~", "a~"},
      {"\x7f", "\x7f", "\\x7f", "\\x7f"},
      {"\u0080", "\x80", "\\x80", "\\x80"},
      {"\u009f", "\x9f", "\\x9f", "\\x9f"},
      {"\u00a0", "\xa0", "\u00a0", "\\xa0"},
      {"Caf\u00e9", "Caf\xe9", "Caf\u00e9", "Caf\\xe9"},
      {"\u00ff", "\xff", "\u00ff", "\\xff"},
      {"\\xe9\\\\", "\xe9\\", "\u00e9\\\\", "\\xe9\\\\"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(unescaped(row.typed), row.bytes) << row.typed;
    EXPECT_EQ(shown(row.bytes), row.shown);
    EXPECT_EQ(escaped(row.bytes), row.data);
    EXPECT_EQ(unescaped(shown(row.bytes)), row.bytes) << "what is shown can be typed";
  }
  EXPECT_EQ(label(Bytes(" \0Caf\xe9 \0", 8)), "Caf\u00e9");
  for (const char* const wrong : {"\u0100", "\u20ac", "\U0001f600", "\x80", "\xff", "caf\xe9", "\xc3",
                                  "\xc0\x80", "\xc1\xbf", "\xc2 "}) {
    EXPECT_THROW(unescaped(wrong), std::invalid_argument) << wrong;
  }
}

TEST(Texts, NamesAreShownAsTyped) {
  Tool simulator("velk-sim", {"--tcp", "0", "--password", "p\u00e9", "--for", "600"});
  const std::string link = behind(simulator.line(), "tcp Q ");
  const auto with = [&](Words words, const Words& more) {
    words.insert(words.end(), {"--tcp", link, "--password", "p\u00e9"});
    words.insert(words.end(), more.begin(), more.end());
    return velk(std::move(words));
  };
  EXPECT_EQ(call({"--tcp", link, "--password", "p\\xe9", "Preset", "W", "7", "Soir\u00e9e \\x80        ", "3",
                  "1234", "10"})
                .status,
            0);
  EXPECT_EQ(with({"preset"}, {"7"}).text.substr(0, 23), "preset 7 Soir\u00e9e \\x80: ");
  EXPECT_EQ(with({"preset"}, {"7", "--json"}).text.substr(0, 39),
            "{\"preset\":7,\"text\":\"Soir\u00e9e \\\\x80\",\"del");
  EXPECT_EQ(with({"ir-text", "3"}, {"10 \u20ac"}).status, 2);
  EXPECT_EQ(complaintOf({"ir-text", "--simulate", "3", "10 \u20ac"}),
            "velk: \"\u20ac\" is no character of the controller, which has those of Latin-1 only\n");
  EXPECT_EQ(with({"ir-text", "3"}, {"\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9"
                                    "\u00e9\u00e9\u00e9\u00e9"})
                .status,
            0)
      << "sixteen characters are sixteen bytes";
}

}  // namespace
}  // namespace velk::cli
