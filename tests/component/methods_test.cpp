#include "component/methods.h"

#include <set>

#include "support/simulated_house.h"

namespace velk::test {
namespace {

const Method& methodNamed(std::string_view name) {
  const Method* const method = findMethod(name);
  EXPECT_NE(method, nullptr) << name;
  return *method;
}

TEST(MethodTable, NamesInAnyCaseAndIdsFindTheirRow) {
  std::set<int> ids;
  for (const Method& method : methods()) {
    std::string shouted(method.name);
    for (char& c : shouted) c = static_cast<char>(std::toupper(c));
    EXPECT_EQ(findMethod(shouted), &method);
    EXPECT_EQ(findMethod(method.id), &method);
    EXPECT_TRUE(ids.insert(method.id).second);
    for (std::size_t i = 0; i < method.count; ++i) EXPECT_EQ(findParameter(method, method.slots[i].name), i);
  }
  for (const char* name : {"", "Open", "OpenComm", "Ctl_Online", "Ctl_Text"})
    EXPECT_EQ(findMethod(name), nullptr) << name;
  for (const int id : {-4, 0, 6, 255, 256, 1 << 30}) EXPECT_EQ(findMethod(id), nullptr) << id;
  EXPECT_EQ(findParameter(methodNamed("OpenCom"), "FASTCOM"), 2U);
  EXPECT_EQ(findParameter(methodNamed("OpenCom"), "Speed"), std::nullopt);
}

TEST(MethodTable, DispatchIdsNeverChange) {
  const std::vector<std::pair<const char*, int>> table{
      {"FlgBreak", 1},    {"SoortETH", 5},    {"OpenCom", 10},  {"WriteCom", 17}, {"ConvertErr", 20},
      {"WhatBit", 26},    {"Ctl_Param", 32},  {"Ctl_Init", 40}, {"Ctl_Lang", 42}, {"Preset", 50},
      {"SwitchTime", 54}, {"ModuleType", 60}, {"GSMtext", 69}};
  for (const auto& [name, id] : table) EXPECT_EQ(methodNamed(name).id, id) << name;
}

class Calls : public SimulatedHouse {
 protected:
  void SetUp() override { open(LinkKind::ethernetQ); }

  /// Calls by name with what is given; the arguments come back as the method leaves them.
  Value call(std::string_view name, std::vector<Value>& arguments) {
    const Method& method = methodNamed(name);
    std::array<bool, mostParameters> given{};
    std::fill_n(given.begin(), arguments.size(), true);
    arguments.resize(method.count);
    const auto fault = complete(method, arguments, std::span(given).first(method.count));
    EXPECT_FALSE(fault.has_value()) << name;
    return fault ? Value() : method.call(serial, arguments.data());
  }
};

TEST_F(Calls, DefaultsAreThoseOfTheClass) {
  std::vector<Value> arguments{std::string("R"), std::int32_t{5}, std::string("?")};
  EXPECT_EQ(call("ctl_param", arguments), Value(Byte{0}));
  EXPECT_EQ(arguments[2], Value(std::string("T1")));
  EXPECT_EQ(arguments[4], Value(std::int16_t{12}));
  std::vector<Value> init{std::string("R"), Value()};
  EXPECT_EQ(call("Ctl_Init", init), Value(Byte{0}));
  EXPECT_EQ(std::get<std::string>(init[1]).size(), 16U);
  std::vector<Value> link{std::string("W"), 50.0, 0.0, 7.0, std::string("O"), 1.0};
  EXPECT_EQ(call("Ctl_Soft", link), Value(Byte{0}));
  EXPECT_EQ(memoryAt(50, 254, 1), bytes({0x11})) << "both flanks when none is given";
  std::vector<Value> none;
  EXPECT_EQ(call("OpenCom", none), Value(Byte{100}));
  EXPECT_FALSE(serial.TCP);
  EXPECT_EQ(defaultOf(methodNamed("OpenTCP").slots[3]), Value(Byte{2}));
  EXPECT_EQ(defaultOf(methodNamed("TranCeiv").slots[5]), Value(Byte{2}));
}

TEST_F(Calls, ArgumentsAreConvertedOrNamed) {
  const Method& method = methodNamed("ReadCom");
  std::array<bool, 5> given{true, true, true, true, false};
  std::array<Value, 5> arguments{std::string(" 3 "), 2.5, std::int16_t{16}, std::string("V"), Value()};
  EXPECT_FALSE(complete(method, arguments, given));
  EXPECT_EQ(arguments[0], Value(Byte{3}));
  EXPECT_EQ(arguments[1], Value(Byte{2}));
  EXPECT_EQ(arguments[4], Value(Byte{0}));
  const auto faultOf = [&](std::size_t at, const Value& value, bool isGiven = true) {
    std::array<Value, 5> bad = arguments;
    std::array<bool, 5> some{true, true, true, true, true};
    bad[at] = value;
    some[at] = isGiven;
    const auto fault = complete(method, bad, some);
    EXPECT_TRUE(fault && fault->parameter == at);
    return fault ? fault->reason : CallFault::notOptional;
  };
  EXPECT_EQ(faultOf(1, std::int32_t{256}), CallFault::overflow);
  EXPECT_EQ(faultOf(0, std::string("x")), CallFault::typeMismatch);
  EXPECT_EQ(faultOf(3, Value(), false), CallFault::notOptional);
}

TEST_F(Calls, PropertiesReadAndWrite) {
  for (const Method& method : methods()) {
    EXPECT_EQ(method.put != nullptr, method.kind == Kind::property) << method.name;
  }
  const Method& address = methodNamed("SerAddress");
  EXPECT_EQ(address.call(serial, nullptr), Value(Byte{2}));
  address.put(serial, Byte{44});
  EXPECT_EQ(serial.SerAddress, 44);
  methodNamed("SoortETH").put(serial, std::string("S"));
  EXPECT_EQ(methodNamed("SoortETH").call(serial, nullptr), Value(std::string("S")));
}

/// Every method with texts of all kinds: no crash, and an answer in bounded time.
TEST_F(Calls, OddTextsOnEveryMethod) {
  for (const LinkKind kind : allLinks) {
    open(kind);
    for (const Method& method : methods()) {
      if (method.kind == Kind::property || method.name == "OpenTCP" || method.name == "OpenCom") continue;
      for (const Bytes& text : {Bytes(), Bytes(1, '\0'), Bytes("R"), Bytes("W"), Bytes(70000, '\xFF'),
                                bytes({255, 0, 1, '#', '*'})}) {
        std::vector<Value> arguments;
        for (const Parameter& parameter : method.parameters()) {
          arguments.push_back(parameter.type == Type::text      ? Value(text)
                              : parameter.type == Type::boolean ? Value(true)
                              : parameter.type == Type::variant ? Value(1.0)
                                                                : convert(std::int32_t{3}, parameter.type));
        }
        try {
          method.call(serial, arguments.data());
        } catch (const RuntimeError& error) {
          EXPECT_TRUE(error.number() == 5 || error.number() == 6 || error.number() == 8018 ||
                      error.number() == 13)
              << method.name;
        }
        if (method.name == "CloseTCP" || method.name == "CloseCom") open(kind);
      }
    }
  }
}

}  // namespace
}  // namespace velk::test
