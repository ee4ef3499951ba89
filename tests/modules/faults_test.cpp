#include "modules/module_house.h"

namespace velk::test {
namespace {

using Call = Byte (*)(ModuleHouse&, Record&);

constexpr std::array<Call, 7> calls{
    [](ModuleHouse& house, Record&) { return house.serial.RXModuleVersie("090500"); },
    [](ModuleHouse& house, Record& r) { return (r = house.read("060001", r)).result; },
    [](ModuleHouse& house, Record& r) { return (r = house.write("950010", r)).result; },
    [](ModuleHouse& house, Record& r) { return house.serial.Sample("R", "090500", 1, 0, r.data); },
    [](ModuleHouse& house, Record& r) { return house.serial.Sample("W", "090500", 1, 0, r.data); },
    [](ModuleHouse& house, Record& r) { return house.serial.GSMtext("R", "930100", 1, r.data); },
    [](ModuleHouse& house, Record& r) { return house.serial.GSMtext("W", "930100", 1, r.data); },
};

/// How a call ends behind one fault: result and milliseconds, then the size of the data if it changed them,
/// and the offset if it did.
std::string outcome(Call call, const std::string& fault) {
  ModuleHouse house({fault});
  Record record{.data = counted(20)};
  std::string text = std::to_string(call(house, record));
  text += "/" + std::to_string(house.spent());
  if (record.data != counted(20)) text += "/" + std::to_string(record.data.size());
  return record.offset == 0 ? text : text + "+" + std::to_string(record.offset);
}

/// A status of the link ends a call, but for those of polls, which go on. Codes and waits are the module's.
TEST(ModuleFaultsTest, EveryFaultInEveryMethod) {
  std::istringstream table(R"(
# fault         version  Module R      Module W    Sample R    Sample W  GSM R      GSM W
status=7@1      7/1      7/1           7/1         7/1/0       7/1       7/1        7/1
status=7@2      7/102    7/102         7/102       7/2/0       7/2       7/2        7/2
status=7@3      0/206    0/731/74+5    0/4014+2    0/106/16    7/3       0/109/64   7/3
status=7@4      0/206    0/731/74+5    0/4014+2    0/106/16    7/4       0/109/64   7/4
status=7@5      7/205    7/205         7/205       7/105/0     0/106     7/105      0/107
status=7@6      0/205    7/206/0       7/206       0/105/16    0/105     0/213/64   0/107
status=7@7      0/205    7/207/0       7/207       0/105/16    0/105     0/214/64   0/106
status=7@10     0/205    7/310/0       7/3110+1    0/105/16    0/105     0/108/64   0/106
status=7@11     0/205    7/311/16+1    7/3111+1    0/105/16    0/105     0/108/64   0/106
status=7@3-     107/702  107/702       107/702     7/602/0     7/3       7/603      7/3
status=7@4-     100/703  100/703       100/703     7/1103/0    7/4       7/1104     7/4
status=7@5-     7/205    7/205         7/205       7/105/0     7/604     7/105      100/604
status=7@6-     0/205    7/206/0       7/206       0/105/16    0/105     7/107      7/1105
stuck@1         107/702  107/702       107/702     255/602/0   222/604   0/709/64   100/604
stuck@2         0/205    0/1227/58+5   100/2108    0/105/16    0/105     0/108/64   0/106
stuck@3         0/205    0/1227/58+5   100/5012+1  0/105/16    0/105     0/108/64   0/106
stuck@2-        0/205    99/3215/0+5   100/2108    0/105/16    0/105     0/108/64   0/106
busy=600@1      107/702  107/702       107/702     255/602/0   222/604   0/709/64   100/604
busy=300@2      0/205    0/1030/74+5   0/4313+2    0/105/16    0/105     0/108/64   0/106
busy=900@2      0/205    0/1227/58+5   0/4913+2    0/105/16    0/105     0/108/64   0/106
pending=400@1   0/605    0/1130/74+5   0/4413+2    0/505/16    0/505     0/508/64   0/506
pending=900@1   100/703  100/703       100/703     0/1005/16   222/604   0/1008/64  0/1006
pending=1100@1  100/703  100/703       100/703     222/1103/0  222/604   0/1210/64  222/1105
code=128@1      128/703  128/703       128/703     128/1103/0  128/604   0/1210/64  128/1105
code=255@3      0/205    255/913/16+1  0/4013+2    0/105/16    0/105     0/108/64   0/106
code=127@1-2    127/703  127/703       127/703     127/1103/0  127/604   0/2312/64  127/1105
code=128@*      128/703  128/703       128/703     128/1103/0  128/604   128/3307   128/1105
short=12@3      100/203  100/203       100/203     99/103/0    99/3      99/103     99/3
short=13@3-     107/702  107/702       107/702     99/602/0    99/604    0/1804     100/604
short=13@4-     100/703  100/703       100/703     99/1103/0   99/604    0/2305     100/604
short=20@5      100/205  0/730/74+5    0/4013+2    0/105/7     0/105     0/108/55   0/106
)");
  for (std::string line; std::getline(table, line);) {
    std::istringstream cells(line);
    std::string fault;
    if (!(cells >> fault) || fault.front() == '#') continue;
    for (std::size_t i = 0; i < calls.size(); ++i) {
      std::string cell;
      cells >> cell;
      EXPECT_EQ(outcome(calls.at(i), fault), cell) << fault << " in column " << i + 1;
    }
  }
}

}  // namespace
}  // namespace velk::test
