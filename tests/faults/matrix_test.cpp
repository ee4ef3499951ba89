#include <map>

#include "simulator/house_modules.h"
#include "support/simulated_house.h"

namespace velk::test {
namespace {

constexpr Byte page = 200;

/// A connection to a house of its own, with faults.
class Rig : public SimulatedHouse {
 public:
  Rig(LinkKind kind, const simulator::Faults& faults) {
    attachModules(controller);
    open(kind, faults);
  }

  /// Reads or writes four bytes: the status, or the run-time error.
  int transfer(bool write) {
    Bytes reply;
    const int error = errorOf(
        [&] { reply = write ? serial.WriteCom(4, page, 9, "V", "data") : serial.ReadCom(4, page, 9, "V"); });
    return error != 0 ? error : byteAt(reply, 0);
  }

  /// Lets late replies arrive.
  void settle() { host.block(platform::Source::nothing, std::chrono::seconds(20), platform::Messages::held); }

  using SimulatedHouse::controller;
  using SimulatedHouse::memoryAt;
  using SimulatedHouse::open;
  using SimulatedHouse::requests;
  using SimulatedHouse::serial;

 private:
  void TestBody() override {}
};

/// What a fault that lasts for all attempts comes to; 0: it has no effect.
TEST(FaultMatrix, EachFaultHasItsCodeOnEachLinkAndPasses) {
  const struct {
    std::string fault;
    std::array<std::pair<int, int>, allLinks.size()>
        effects;      ///< echo, fast, Ethernet Q, S: of a read, of a write
    bool carriedOut;  ///< the write has been done, and only the reply fails
  } rows[] = {{"status=7", {{{7, 7}, {254, 254}, {7, 7}, {7, 7}}}, false},
              {"silent", {{{252, 253}, {252, 252}, {252, 252}, {252, 252}}}, true},
              {"late=4000", {{{252, 253}, {252, 252}, {252, 252}, {252, 252}}}, true},
              {"short=1", {{{252, 0}, {251, 251}, {254, 254}, {100, 100}}}, true},
              {"short=4", {{{252, 0}, {251, 251}, {254, 254}, {254, 254}}}, true},
              {"short=7", {{{0, 0}, {252, 252}, {254, 254}, {254, 254}}}, true},
              {"header", {{{0, 0}, {251, 251}, {254, 254}, {252, 252}}}, true},
              {"foreign", {{{252, 253}, {0, 0}, {254, 254}, {254, 254}}}, true},
              {"no-echo", {{{254, 254}, {}, {}, {}}}, false},
              {"wrong-echo=3", {{{254, 254}, {}, {}, {}}}, false},
              {"disconnect", {{{8020, 8020}, {8020, 8020}, {252, 252}, {252, 252}}}, true}};
  for (const LinkKind kind : allLinks) {
    for (const auto& row : rows) {
      for (const bool write : {false, true}) {
        SCOPED_TRACE(nameOf(kind) + ", " + row.fault + (write ? ", write" : ", read"));
        const auto& [ofRead, ofWrite] = row.effects.at(static_cast<std::size_t>(kind));
        const int expected = write ? ofWrite : ofRead;
        Rig rig(kind, {row.fault + (isSerial(kind) ? "@1-3" : "@1")});
        EXPECT_EQ(rig.transfer(write), expected);
        const bool written = write && (row.carriedOut || expected == 0);
        EXPECT_EQ(rig.memoryAt(page, 9, 4), written ? "data" : Bytes(4, '\0'));
        if (row.fault == "disconnect") rig.open(kind);
        rig.settle();
        EXPECT_EQ(rig.transfer(write), 0) << "the next call";
        if (!isSerial(kind) || row.fault == "disconnect") continue;
        Rig once(kind, {row.fault + "@1"});
        EXPECT_EQ(once.transfer(write), 0) << "a fault of one attempt is tried again";
      }
    }
  }
}

/// A call that writes or reads in several steps.
struct Family {
  const char* name;
  std::size_t steps;
  Byte failure;  ///< the result where the port fails
  Byte (*call)(Serial& serial);
};

/// Methods end at the first transaction that fails, with its status, but for polls of a module's answer. The
/// next call does all of it.
TEST(FaultMatrix, EachMethodEndsAtTheFaultAndGoesOnAfterIt) {
  static const Bytes roller = bytes({2, 3, 4, '2', 4, 6, 'M', 5, 7, 'S', 12});
  static const Bytes clock = bytes({50, 110, 3, 4, 5, 6, 24, 3, 4, 1, 10, 20, 30});
  static const Bytes record = bytes({1, 2, 3, 4, 1, 2, 3, 4});
  static const Bytes name = "Evening at home.";
  static const Bytes entries = "abcdefghijklmnopqr";
  const Family families[] = {
      {"Ctl_Param R", 3, 100, [](Serial& s) { return s.Ctl_Param("R", 5, ""); }},
      {"Ctl_Param W", 7, 100, [](Serial& s) { return s.Ctl_Param("W", 7, "RO", roller, 11); }},
      {"Ctl_Init R", 3, 100, [](Serial& s) { return s.Ctl_Init("R", ""); }},
      {"Ctl_Init W", 6, 100, [](Serial& s) { return s.Ctl_Init("W", clock); }},
      {"Ctl_Soft R", 2, 100, [](Serial& s) { return s.Ctl_Soft("R", 30, 1, 9, "O", 3); }},
      {"Ctl_Soft W", 3, 100, [](Serial& s) { return s.Ctl_Soft("W", 30, 1, 9, "O", 3); }},
      {"Ctl_Lang", 58, 100, [](Serial& s) { return static_cast<Byte>(toNumber(s.Ctl_Lang("D"))); }},
      {"Ctl_IRText", 1, 100, [](Serial& s) { return s.Ctl_IRText("W", 17, "Gramophone"); }},
      {"Preset R", 5, 100, [](Serial& s) { return s.Preset("R", 2, "", 4, ""); }},
      {"Preset W", 6, 100, [](Serial& s) { return s.Preset("W", 2, name, 4, "abcdefgh", 10, 20, 1); }},
      {"Simulation R", 1, 100, [](Serial& s) { return s.Simulation("R", 0, 18, ""); }},
      {"Simulation W", 3, 100, [](Serial& s) { return s.Simulation("W", 2, 20, Bytes(35, '\x15')); }},
      {"SwitchTime R", 1, 100, [](Serial& s) { return s.SwitchTime("R", 3, 0, 0, 0, ""); }},
      {"SwitchTime W", 2, 100, [](Serial& s) { return s.SwitchTime("W", 3, 31, 6, 30, entries); }},
      {"RXModuleVersie", 5, 100, [](Serial& s) { return s.RXModuleVersie("090500"); }},
      {"Module R", 10, 100, [](Serial& s) { return s.Module("R", "090500", ""); }},
      {"Module W", 9, 100, [](Serial& s) { return s.Module("W", "045500", record); }},
      {"Sample R", 5, 99, [](Serial& s) { return s.Sample("R", "090500", 1, 0, ""); }},
      {"Sample W", 6, 99, [](Serial& s) { return s.Sample("W", "090500", 2, 1, Bytes(40, 's')); }},
      {"GSMtext R", 8, 99, [](Serial& s) { return s.GSMtext("R", "930100", 2, ""); }},
      {"GSMtext W", 8, 99, [](Serial& s) { return s.GSMtext("W", "930100", 1, Bytes(64, 't')); }}};
  // Of a lost reply at a step, where it is not 252.
  std::map<std::string, std::map<std::size_t, int>> results{
      {"RXModuleVersie", {{3, 107}, {4, 100}}},
      {"Module R", {{3, 107}, {4, 100}, {8, 99}, {9, 100}}},
      {"Module W", {{3, 107}, {4, 100}, {9, 100}}},
      {"GSMtext R", {{3, 0}, {4, 0}, {6, 0}, {7, 0}, {8, 0}}},
      {"GSMtext W", {{7, 100}}}};
  for (const Family& family : families) {
    Rig good(LinkKind::ethernetQ, {});
    EXPECT_EQ(family.call(good.serial), 0) << family.name;
    EXPECT_EQ(good.requests.size(), family.steps) << family.name;
    for (std::size_t step = 1; step <= family.steps; ++step) {
      SCOPED_TRACE(family.name + (", a lost reply at step " + std::to_string(step)));
      Rig rig(LinkKind::ethernetQ, {"silent@" + std::to_string(step)});
      const int result = family.call(rig.serial);
      EXPECT_EQ(result, results[family.name].try_emplace(step, 252).first->second);
      EXPECT_TRUE(result == 0 || rig.requests.size() == step) << "no request behind a bad one";
      rig.settle();
      EXPECT_EQ(family.call(rig.serial), 0) << "the next call";
      EXPECT_TRUE(rig.controller.snapshot() == good.controller.snapshot()) << "leaves the whole";
    }
    Rig rig(LinkKind::fast, {"disconnect@1"});
    EXPECT_EQ(family.call(rig.serial), family.failure)
        << family.name << " tells a port that fails by its result";
  }
}

}  // namespace
}  // namespace velk::test
