#include "modules/model.h"

#include <gtest/gtest.h>

namespace velk::modules {
namespace {

TEST(ModelTest, TypesOfPrefixes) {
  const std::pair<const char*, int> rows[] = {
      {"120001", 4},  {"130001", 4},  {"140001", 4},  {"160001", 4},  {"060001", 5},  {"300000", 7},
      {"399999", 7},  {"450000", 7},  {"500000", 7},  {"640000", 7},  {"690000", 7},  {"840000", 7},
      {"870000", 7},  {"890000", 7},  {"150001", 7},  {"070001", 7},  {"230000", 7},  {"170000", 1},
      {"090250", 1},  {"650000", 1},  {"080001", 0},  {"000001", 0},  {"800000", 0},  {"680000", 4},
      {"200000", 4},  {"220000", 6},  {"820000", 2},  {"100000", 10}, {"110001", 11}, {"210000", 21},
      {"240000", 24}, {"260000", 26}, {"270000", 27}, {"290000", 29}, {"280000", 4},  {"700000", 70},
      {"750000", 75}, {"790000", 79}, {"830000", 83}, {"880000", 88}, {"900000", 90}, {"990000", 99},
  };
  for (const auto& [serieNr, type] : rows) EXPECT_EQ(ModuleType(serieNr), type) << serieNr;
}

TEST(ModelTest, AnyTextHasAType) {
  const std::pair<const char*, int> rows[] = {{"", 0},    {"ab1234", 0}, {"9", 1},    {" 9", 1}, {"9x", 1},
                                              {"-5", -5}, {"-9", -1},    {".5xx", 0}, {"6", 5},  {"9.0", 1}};
  for (const auto& [serieNr, type] : rows) EXPECT_EQ(ModuleType(serieNr), type) << serieNr;
}

TEST(ModelTest, TheListIsSearchedAsOneText) {
  for (const char* const found :
       {"MT001", "MT037", "  oud", "oude:", "|MT02", "01|MT", "35|  ", ":|MT0", "MT0", ""}) {
    EXPECT_TRUE(inModelList(found)) << found;
  }
  for (const char* const missing : {"mt001", "MT036", "MT038", "MT000", "     ", "MT0  ", "37|MT", " MT01"}) {
    EXPECT_FALSE(inModelList(missing)) << missing;
  }
}

}  // namespace
}  // namespace velk::modules
