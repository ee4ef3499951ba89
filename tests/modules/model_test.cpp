#include "modules/model.h"

#include <gtest/gtest.h>

#include "values/numbers.h"

namespace velk::modules {
namespace {

TEST(ModelTest, TypesOfAllPrefixes) {
  const int types[10][10] = {
      {0, 1, 2, 3, 4, 5, 5, 7, 0, 1},      {10, 11, 4, 4, 4, 7, 4, 1, 2, 3},
      {4, 21, 6, 7, 24, 1, 26, 27, 4, 29}, {7, 7, 7, 7, 7, 7, 7, 7, 7, 7},
      {7, 7, 7, 7, 7, 7, 7, 7, 7, 7},      {7, 7, 7, 7, 7, 7, 7, 7, 7, 7},
      {7, 7, 7, 7, 7, 1, 2, 3, 4, 7},      {70, 71, 72, 73, 74, 75, 76, 77, 78, 79},
      {0, 1, 2, 83, 7, 7, 7, 7, 88, 7},    {90, 91, 92, 93, 94, 95, 96, 97, 98, 99},
  };
  for (int prefix = 0; prefix < 100; ++prefix) {
    for (const char* const number : {"0000", "9999"}) {
      EXPECT_EQ(ModuleType(zeroPadded(prefix, 2) + number), types[prefix / 10][prefix % 10]) << prefix;
    }
  }
}

TEST(ModelTest, AnyTextHasAType) {
  const std::pair<const char*, int> rows[] = {{"", 0},    {"ab1234", 0}, {"9", 1},    {" 9", 1}, {"9x", 1},
                                              {"-5", -5}, {"-9", -1},    {".5xx", 0}, {"6", 5},  {"9.0", 1}};
  for (const auto& [number, type] : rows) EXPECT_EQ(ModuleType(number), type) << number;
}

TEST(ModelTest, TheListIsSearchedAsOneText) {
  std::string whole = "MT001";
  for (int model = 2; model <= 37; ++model) {
    whole += "|" + (model == 36 ? "  oude:" : "MT" + zeroPadded(model, 3));
  }
  EXPECT_TRUE(inModelList(whole) && inModelList("01|MT") && inModelList(""));
  for (const char* const missing : {"mt001", "MT036", "MT038", "MT000", "     ", "MT0  ", "37|MT", " MT01"}) {
    EXPECT_FALSE(inModelList(missing)) << missing;
  }
}

}  // namespace
}  // namespace velk::modules
