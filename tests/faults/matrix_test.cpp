#include <gtest/gtest.h>

#include <set>

#include "component/result_codes.h"
#include "link/wait.h"
#include "simulator/house_modules.h"
#include "support/simulated_house.h"

namespace velk::test {
namespace {

using simulator::Store;

/// A call that writes or reads in several steps. The arguments are its own, so that it can be made again.
struct Family {
  std::string_view name;
  Byte (*call)(Serial& serial);
};

Byte withText(Bytes text, Byte (*call)(Serial&, Bytes&), Serial& serial) {
  return call(serial, text);
}

Byte preset(Serial& serial, const std::string& direction) {
  std::string text = "Evening at home.";
  Bytes records = "abcdefgh";
  Byte delay1 = 10;
  Byte delay2 = 20;
  Byte simulation = 1;
  return serial.Preset(direction, 2, text, 4, records, delay1, delay2, simulation);
}

Byte softLink(Serial& serial, const std::string& direction) {
  Byte destination = 9;
  std::string kind = "O";
  Byte parameters1 = 3;
  return serial.Ctl_Soft(direction, 30, 1, destination, kind, parameters1);
}

Byte switchTime(Serial& serial, const std::string& direction) {
  Byte days = 31;
  Byte hour = 6;
  Byte minute = 30;
  Bytes entries = "abcdefghijklmnopqr";
  return serial.SwitchTime(direction, 3, days, hour, minute, entries);
}

Byte parameters(Serial& serial, const std::string& direction, Byte address, const std::string& mode) {
  std::string ownMode = mode;
  Bytes items = bytes({1, 'C', 0});
  std::int16_t count = direction == "R" ? 255 : 0;
  return serial.Ctl_Param(direction, address, ownMode, items, count);
}

/// Methods whose every transaction must succeed: they end at the first that fails, with its status.
constexpr std::array families{
    Family{"Ctl_Param R", [](Serial& s) { return parameters(s, "R", 5, ""); }},
    Family{"Ctl_Param W", [](Serial& s) { return parameters(s, "W", 7, "RO"); }},
    Family{"Ctl_Init R",
           [](Serial& s) {
             return withText(
                 {}, [](Serial& t, Bytes& b) { return t.Ctl_Init("R", b); }, s);
           }},
    Family{"Ctl_Init W",
           [](Serial& s) {
             return withText(
                 bytes({50, 110, 3, 4, 5, 6, 24, 3, 4, 1, 10, 20, 30}),
                 [](Serial& t, Bytes& b) { return t.Ctl_Init("W", b, 13, 0); }, s);
           }},
    Family{"Ctl_Soft R", [](Serial& s) { return softLink(s, "R"); }},
    Family{"Ctl_Soft W", [](Serial& s) { return softLink(s, "W"); }},
    Family{"Ctl_Lang", [](Serial& s) { return static_cast<Byte>(toNumber(s.Ctl_Lang("D"))); }},
    Family{"Ctl_IRText", [](Serial& s) { return s.Ctl_IRText("W", 17, "Gramophone"); }},
    Family{"Preset R", [](Serial& s) { return preset(s, "R"); }},
    Family{"Preset W", [](Serial& s) { return preset(s, "W"); }},
    Family{"Simulation R",
           [](Serial& s) {
             return withText(
                 {}, [](Serial& t, Bytes& b) { return t.Simulation("R", 0, 18, b); }, s);
           }},
    Family{"Simulation W",
           [](Serial& s) {
             return withText(
                 Bytes(35, '\x15'), [](Serial& t, Bytes& b) { return t.Simulation("W", 2, 20, b); }, s);
           }},
    Family{"SwitchTime R", [](Serial& s) { return switchTime(s, "R"); }},
    Family{"SwitchTime W", [](Serial& s) { return switchTime(s, "W"); }},
};

/// Methods that poll through bad transactions, so that a fault may leave no trace in the result.
constexpr std::array moduleFamilies{
    Family{"RXModuleVersie", [](Serial& s) { return s.RXModuleVersie("090500"); }},
    Family{"Module R",
           [](Serial& s) {
             return withText(
                 {}, [](Serial& t, Bytes& b) { return t.Module("R", "090500", b); }, s);
           }},
    Family{"Module W",
           [](Serial& s) {
             return withText(
                 bytes({1, 2, 3, 4, 1, 2, 3, 4}),
                 [](Serial& t, Bytes& b) { return t.Module("W", "045500", b); }, s);
           }},
    Family{"Sample R",
           [](Serial& s) {
             return withText(
                 {}, [](Serial& t, Bytes& b) { return t.Sample("R", "090500", 1, 0, b); }, s);
           }},
    Family{"Sample W",
           [](Serial& s) {
             return withText(
                 Bytes(40, 's'), [](Serial& t, Bytes& b) { return t.Sample("W", "090500", 2, 1, b); }, s);
           }},
    Family{"GSMtext R",
           [](Serial& s) {
             return withText(
                 {}, [](Serial& t, Bytes& b) { return t.GSMtext("R", "930100", 2, b); }, s);
           }},
    Family{"GSMtext W",
           [](Serial& s) {
             return withText(
                 Bytes(64, 't'), [](Serial& t, Bytes& b) { return t.GSMtext("W", "930100", 1, b); }, s);
           }},
};

constexpr int noEffect = 0;

/// What a fault comes to on a link, at a step that reads and at one that writes.
struct Effect {
  int read;
  int write;
};

struct FaultRow {
  std::string_view fault;
  std::array<Effect, allLinks.size()> effects;  ///< echo, fast, Ethernet Q, Ethernet S
  bool carriedOut;  ///< the controller has done what was asked, and only the reply fails
};

constexpr std::array faultRows{
    FaultRow{"status=7", {{{7, 7}, {254, 254}, {7, 7}, {7, 7}}}, false},
    FaultRow{"silent", {{{252, 253}, {252, 252}, {252, 252}, {252, 252}}}, true},
    FaultRow{"late=4000", {{{252, 253}, {252, 252}, {252, 252}, {252, 252}}}, true},
    FaultRow{"short=1", {{{252, noEffect}, {251, 251}, {254, 254}, {100, 100}}}, true},
    FaultRow{"short=7", {{{-1, noEffect}, {252, 252}, {254, 254}, {254, 254}}}, true},
    FaultRow{"header", {{{noEffect, noEffect}, {251, 251}, {254, 254}, {252, 252}}}, true},
    FaultRow{"foreign", {{{252, 253}, {noEffect, noEffect}, {254, 254}, {254, 254}}}, true},
    FaultRow{"no-echo", {{{254, 254}, {}, {}, {}}}, false},
    FaultRow{"wrong-echo=3", {{{254, 254}, {}, {}, {}}}, false},
    FaultRow{"disconnect", {{{100, 100}, {100, 100}, {252, 252}, {252, 252}}}, true},
};

/// One connection to a house of its own.
class Rig {
 public:
  Rig(LinkKind kind, std::initializer_list<std::string_view> faults) : kind_(kind) {
    simulator::attachModules(controller);
    host.transferTime = std::chrono::milliseconds(1);
    open(simulator::Faults(faults));
  }

  void open(const simulator::Faults& faults) {
    const auto makePeer = [this, faults] {
      return makeSession(kind_, controller,
                         {.faults = faults, .trace = [this](const std::string& line) { note(line); }});
    };
    host.plugIn(1, makePeer);
    host.listen("house", 1000, makePeer);
    const Byte result =
        isSerial(kind_) ? serial.OpenCom(1, 9600, kind_ == LinkKind::fast) : serial.OpenTCP("house", 1000);
    ASSERT_EQ(result, 0);
    serial.FlgBreak = false;
  }

  void reopen() {
    serial.CloseTCP();
    serial.CloseCom();
    open({});
  }

  simulator::Controller controller{simulator::house()};
  simulator::LoopbackHost host;
  Serial serial{host};
  std::vector<bool> isWrite;  ///< of each request
  std::function<void()> onRequest;

 private:
  void note(const std::string& line) {
    if (line.rfind("read", 0) != 0 && line.rfind("write", 0) != 0) return;
    isWrite.push_back(line.front() == 'w');
    if (onRequest) onRequest();
  }

  LinkKind kind_;
};

/// A call without faults: its steps, and the memory before and after each.
struct GoodRun {
  GoodRun(LinkKind kind, const Family& family) {
    Rig rig(kind, {});
    memory.push_back(rig.controller.snapshot());
    rig.onRequest = [&] { memory.push_back(rig.controller.snapshot()); };
    result = family.call(rig.serial);
    isWrite = rig.isWrite;
  }

  /// The first, the last and some between.
  [[nodiscard]] std::set<std::size_t> steps() const {
    const std::size_t count = isWrite.size();
    return {1, std::min<std::size_t>(2, count), (count + 1) / 2,
            count / 2 + 1 > count ? count : count / 2 + 1, count};
  }

  Byte result = 0;
  std::vector<bool> isWrite;
  std::vector<Store> memory;
};

/// A fault that lasts for all attempts of one step.
std::string lasting(LinkKind kind, std::string_view fault, std::size_t step) {
  const std::size_t attempts = isSerial(kind) ? 3 : 1;
  return std::string(fault) + "@" + std::to_string(step) + "-" + std::to_string(step + attempts - 1);
}

/// Lets late replies arrive.
void settle(Rig& rig) {
  link::pause(rig.host, link::Seconds(20), platform::Messages::dispatched);
}

/// The call works once the fault has gone: on the same link, or on a new one where the old one has ended.
void expectRecovery(Rig& rig, const Family& family, bool ended, Byte result) {
  if (ended) {
    EXPECT_NE(family.call(rig.serial), 0) << "a link that has ended cannot work";
    rig.reopen();
  }
  settle(rig);
  EXPECT_EQ(family.call(rig.serial), result) << "the next call";
}

class FaultMatrix : public testing::TestWithParam<LinkKind> {};

TEST_P(FaultMatrix, EndsAtTheFaultAndGoesOnAfterIt) {
  const LinkKind kind = GetParam();
  int cells = 0;
  for (const Family& family : families) {
    const GoodRun good(kind, family);
    ASSERT_EQ(good.result, 0) << family.name;
    for (const FaultRow& row : faultRows) {
      for (const std::size_t step : good.steps()) {
        const bool isWrite = good.isWrite.at(step - 1);
        const Effect& effect = row.effects.at(static_cast<std::size_t>(kind));
        int expected = isWrite ? effect.write : effect.read;
        if (expected < 0) continue;  // depends on the length of the reply
        const std::string fault = lasting(kind, row.fault, step);
        SCOPED_TRACE(std::string(family.name) + ", " + fault);
        Rig rig(kind, {fault});
        EXPECT_EQ(family.call(rig.serial), expected);
        const Store& left = good.memory.at(expected == noEffect ? good.memory.size() - 1
                                           : row.carriedOut     ? step
                                                                : step - 1);
        EXPECT_TRUE(rig.controller.snapshot() == left)
            << "the memory holds what was written before the fault";
        expectRecovery(rig, family, row.fault == "disconnect", 0);
        EXPECT_TRUE(rig.controller.snapshot() == good.memory.back()) << "the next call leaves the whole";
        ++cells;
      }
    }
  }
  EXPECT_GT(cells, 300);
}

/// One lost reply costs nothing on the serial line, where a request is tried three times.
TEST_P(FaultMatrix, AFaultOfOneAttemptIsTriedAgain) {
  if (!isSerial(GetParam())) GTEST_SKIP() << "the Ethernet interfaces have one attempt";
  for (const Family& family : families) {
    const GoodRun good(GetParam(), family);
    for (const FaultRow& row : faultRows) {
      if (row.fault == "disconnect") continue;
      for (const std::size_t step : good.steps()) {
        SCOPED_TRACE(std::string(family.name) + ", " + std::string(row.fault) + ", step " +
                     std::to_string(step));
        Rig rig(GetParam(), {std::string(row.fault) + "@" + std::to_string(step)});
        EXPECT_EQ(family.call(rig.serial), 0);
        EXPECT_TRUE(rig.controller.snapshot() == good.memory.back());
      }
    }
  }
}

bool isDocumented(Byte result) {
  const auto codes = resultCodes();
  return std::any_of(codes.begin(), codes.end(), [=](const ResultCode& row) { return row.code == result; });
}

/// Requests to modules go on through a bad poll, so that a fault may leave the result good. Where it is good
/// the memory is that of a good run; in any case the controller holds no write from behind the fault.
TEST_P(FaultMatrix, ModuleRequestsEndWithACodeAndGoOn) {
  const LinkKind kind = GetParam();
  for (const Family& family : moduleFamilies) {
    const GoodRun good(kind, family);
    ASSERT_EQ(good.result, 0) << family.name;
    for (const FaultRow& row : faultRows) {
      for (const std::size_t step : good.steps()) {
        const std::string fault = lasting(kind, row.fault, step);
        SCOPED_TRACE(std::string(family.name) + ", " + fault);
        Rig rig(kind, {fault});
        const Byte result = family.call(rig.serial);
        EXPECT_TRUE(isDocumented(result) || (row.fault == "status=7" && result == 7)) << int{result};
        const bool isWrite = good.isWrite.at(step - 1);
        const Effect& effect = row.effects.at(static_cast<std::size_t>(kind));
        const int expected = isWrite ? effect.write : effect.read;
        if (expected == noEffect || (isWrite && row.fault != "disconnect")) {
          EXPECT_EQ(result, expected) << "a write ends the method as everywhere";
        }
        expectRecovery(rig, family, row.fault == "disconnect", 0);
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Links, FaultMatrix, testing::ValuesIn(allLinks),
                         [](const auto& row) { return nameOf(row.param); });

}  // namespace
}  // namespace velk::test
