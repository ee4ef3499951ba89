#include "cli/velk/things/words.h"

#include <gtest/gtest.h>

namespace velk::cli {
namespace {

struct TypedDays {
  const char* text;
  int days;  ///< -1 for none
};

class DaysTest : public testing::TestWithParam<TypedDays> {};

TEST_P(DaysTest, AreTypedAsPeopleWriteThem) {
  const auto days = parseDays(GetParam().text);
  EXPECT_EQ(days ? int{*days} : -1, GetParam().days) << GetParam().text;
}

constexpr TypedDays typedDays[] = {
    {"Mon", 1},      {"sunday", 64},     {"M", 1},
    {"T", -1},       {"tu", 2},          {"Mon-Fri", 31},
    {"Sat,Sun", 96}, {"Sat, Sun", 96},   {"Fri-Mon", 113},
    {"Mon-Mon", 1},  {"WEEKDAYS", 31},   {"weekend,Wed", 100},
    {"daily", 127},  {"every day", 127}, {"week", -1},
    {"Mondays", -1}, {"", -1},           {"Mon,", -1},
    {"Mon-", -1},    {"-Fri", -1},       {"Mon-Wed-Fri", -1},
    {"Mon Fri", -1}, {"Mo,Mo", 1},
};
INSTANTIATE_TEST_SUITE_P(All, DaysTest, testing::ValuesIn(typedDays));

TEST(DaysTest, ReadBackAsTheyAreShown) {
  for (int days = 1; days < 128; ++days) {
    const auto shown = daysOf(static_cast<Byte>(days));
    EXPECT_EQ(parseDays(shown), static_cast<Byte>(days)) << shown;
  }
}

struct TypedTime {
  const char* text;
  int seconds;  ///< of the day; -1 for none
};

class TimeTest : public testing::TestWithParam<TypedTime> {};

TEST_P(TimeTest, IsTypedAsPeopleWriteIt) {
  const auto time = parseTime(GetParam().text);
  EXPECT_EQ(time ? (time->hour * 60 + time->minute) * 60 + time->second : -1, GetParam().seconds)
      << GetParam().text;
}

constexpr TypedTime typedTimes[] = {
    {"7:45", 27900}, {"07:45", 27900}, {"00:00", 0},    {"23:59:59", 86399}, {"24:00", -1},   {"7:60", -1},
    {"7:5", -1},     {"007:45", -1},   {"7:45:60", -1}, {"7:45:00:0", -1},   {"3:255:2", -1}, {"7.45", -1},
    {"745", -1},     {"", -1},         {":", -1},       {" 7:45", -1},       {"-7:45", -1},
};
INSTANTIATE_TEST_SUITE_P(All, TimeTest, testing::ValuesIn(typedTimes));

}  // namespace
}  // namespace velk::cli
