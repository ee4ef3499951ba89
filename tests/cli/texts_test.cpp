#include <gtest/gtest.h>

#include <stdexcept>

#include "cli/escapes.h"
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

TEST(Texts, DaysAndTimesInWords) {
  const std::pair<int, const char*> rows[] = {
      {0, "no day"},
      {127, "every day"},
      {1, "Mon"},
      {3, "Mon, Tue"},
      {7, "Mon-Wed"},
      {0x1F, "Mon-Fri"},
      {0x5D, "Mon, Wed-Fri, Sun"},
      {0x2A, "Tue, Thu, Sat"},
  };
  for (const auto& [days, words] : rows) EXPECT_EQ(daysOf(static_cast<Byte>(days)), words);
  EXPECT_EQ(weekday(-1) + weekday(0) + weekday(3) + weekday(6) + weekday(7),
            "day -1MondayThursdaySundayday 7");
  EXPECT_EQ(timeOfDay(9, 10) + " " + timeOfDay(10, 9, 0), "09:10 10:09:00");
}

}  // namespace
}  // namespace velk::cli
