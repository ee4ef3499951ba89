#include "simulator/house_modules.h"

#include <algorithm>
#include <memory>

namespace velk::simulator {
namespace {

/// Channel masks by the number of the channel that they select.
constexpr int ch1 = 0xEE;
constexpr int ch2 = 0xDD;
constexpr int ch3 = 0xBB;
constexpr int ch4 = 0x77;

// Pieces that carry a known model's record start at 1: piece 0 is in front of what hosts count.
// clang-format off
const std::vector<ModuleRow>& rows() {
  static const std::vector<ModuleRow> table{
      {1,      0,          "",             {},           0, {5}},
      {5000,   identifies, "IN1",          {16, 1, 2},   0, {7}},
      {10100,  0,          "",             {},           0, {5, 1, 6, 2, 7, 3, 8, 4, 9, 1}},
      {30010,  identifies, "DS18",         {16, 1, 0},   0, {9, 2}},
      {40100,  0,          "",             {},           0, {1, 2, 3, 4, 5, 6, 7, 8}},
      {45500,  identifies, "KP4",          {16, 1, 1},   0, {8, 7, 6, 5, 4, 3, 2, 1}},
      {60001,  identifies, "SEQ4",         {18, 1, 0},   0, {10, 1, 20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                                             11, 2, 21}},
      {70001,  identifies, "TM7",          {18, 1, 0},   0, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}},
      {80100,  identifies, "TH1",          {16, 2, 0},   0, {5, 1, 20, 21, 22, 23}},
      {80300,  identifies, "MT003/8",      {16, 2, 1},   1, {6, 3, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}},
      {90100,  identifies, "DIM1",         {48, 0, 9},   0, {5, 1, 6, 2, 7, 3, 8, 4, 9, 1,  0, 0, 0, 0, 0, 0,
                                                             5, 0, 16, 8, 4, 2, 0, 1, 3, 7}},
      {90255,  identifies, "",             {},           1, {5, ch1, 6, ch2, 7, ch3, 8, ch4, 1, 3, 7, 15, 31, 63, 127, 255}},
      {90500,  identifies | keepsSamples,
                           "MT007/500VA",  {48, 1, 5},   1, {5, ch4, 6, ch3, 7, ch2, 8, ch1, 16, 8, 4, 2, 0, 1, 3, 7}},
      {100100, identifies | tellsVersion,
                           "MT020/BUS",    {64, 3, 1},   1, {5, ch1, 6, ch2, 7, ch3, 8, ch4, 16, 8, 4, 2, 0, 1, 3, 7,
                                                             17, 18, 19, 20, 21, 22}},
      {110100, identifies, "LCD70",        {64, 1, 0},   0, {'V', 'E', 'L', 'K'}},
      {120100, identifies, "KP8",          {16, 0, 7},   0, {1, 1, 2, 2, 3, 3, 4, 4}},
      {210001, identifies, "WX24",         {64, 1, 3},   0, {21, 5, 60}},
      {270100, identifies, "MT009",        {16, 1, 0},   1, {1, ch2, 3, 4, 5, 6, 7}},
      {300000, identifies, "MT015/32",     {48, 4, 2},   1, {1, ch1, 2, ch2, 3, ch3, 4, ch4, 5, ch1, 6, ch2, 7, ch3, 8, ch4,
                                                             0, 9, 10, 11}},
      {700100, identifies, "AMP2",         {64, 2, 0},   0, {70, 1, 40}},
      {706000, identifies, "AMP4",         {64, 2, 6},   0, {70, 6, 40}},
      {750000, identifies, "MT018",        {48, 1, 1},   1, {5, 1, 2, 3}},
      {830100, identifies, "RF3",          {16, 1, 0},   0, {5, 6, 7}},
      {830300, identifies, "RF5",          {16, 2, 0},   0, {5, 6, 7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                                             1, 2, 3, 4, 5}},
      {880000, identifies, "GW22",         {64, 1, 0},   0, {88, 1, 2}},
      {930100, identifies | keepsTexts,
                           "GSM",          {96, 2, 3},   0, {1, 2, 3}},
      {950010, identifies | tellsVersion,
                           "VID20",        {96, 1, 4},   0, {9, 8, 7}},
      {951500, identifies | tellsVersion,
                           "MT031",        {96, 1, 9},   1, {5, ch1, 6, ch2, 7, ch3, 8, ch4, 0, 0, 0, 0, 0, 0, 0, 0,
                                                             0, 0, 0, 0, 0, 0, 0, 0, 0, ch4, 0, ch3, 0, ch2, 0, ch1}},
      {980050, 0,          "",             {},           0, {16, 1, 2, 3}},
      {980500, identifies | keepsSamples,
                           "DSP",          {96, 5, 0},   0, {40, 'l', 'o', 'n', 'g', ' ', 'r', 'e', 'c', 'o', 'r', 'd'}},
      {990000, 0,          "",             {},           0, {4, 3, 2, 1}},
  };
  return table;
}
// clang-format on

}  // namespace

std::vector<SimulatedModule> houseModules(std::vector<SimulatedModule> others) {
  std::vector<SimulatedModule> modules = std::move(others);
  for (const ModuleRow& row : rows()) {
    const bool isThere = std::any_of(modules.begin(), modules.end(), [&](const SimulatedModule& module) {
      return module.serial() == row.serial;
    });
    if (!isThere) modules.emplace_back(row);
  }
  return modules;
}

void attachModules(Controller& controller, const Faults& faults, const Trace& trace) {
  controller.attach(std::make_unique<MailboxDevice>(houseModules(), faults, trace));
}

}  // namespace velk::simulator
