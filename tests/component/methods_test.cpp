#include "component/methods.h"

#include "component/result_codes.h"
#include "support/watched_house.h"

namespace velk::test {
namespace {

/// A row of the method table as a declaration: "&" marks what is written back, and bytes stand without type.
std::string declarationOf(const Method& method) {
  constexpr std::array types{"none ", "boolean ", "", "integer ", "text ", "variant "};
  const auto nameOf = [&](Type type) { return std::string(types.at(static_cast<std::size_t>(type))); };
  std::string text = std::to_string(method.id) + " " + nameOf(method.result) + std::string(method.name);
  if (method.kind == Kind::method) text += "(";
  for (const Parameter& parameter : method.parameters()) {
    text += (text.back() == '(' ? "" : ", ") + nameOf(parameter.type) + (parameter.inOut ? "&" : "");
    text += parameter.name;
    if (parameter.optional) text += "=" + toText(defaultOf(parameter));
  }
  return method.kind == Kind::method ? text + ")" : text;
}

/// Dispatch ids, names, types and defaults, which programs of others were built against.
const char* const declarations =
    "1 boolean FlgBreak; 2 SerAddress; 3 boolean NoEcho; 4 boolean TCP; 5 text SoortETH; "
    "10 OpenCom(Port=1, integer Baudrate=9600, boolean FastCom=False); 11 CloseCom(); "
    "12 OpenTCP(text IpAddress, integer PortNumber, text &PassWord=, RSAddress=2); 13 CloseTCP(); "
    "14 text TranceivTcp(integer Protocol, integer ID, AtlPogingen, Functie, text Data); "
    "15 text TranCeiv(AtlBytes, DPHxram, DPLxram, text Data, AtlPogingen=0, Instructie=2); "
    "16 text ReadCom(AtlBytes, DPHxram, DPLxram, text Richting, AtlPogingen=0); "
    "17 text WriteCom(AtlBytes, DPHxram, DPLxram, text Richting, text Data, AtlPogingen=0); "
    "20 ConvertErr(variant ErrorNr); 21 DECtoBCD(Getal); 22 boolean IfSetBit(Bytte, Bitnr); "
    "23 variant LdZr(variant Getal, Lengte); 24 LowNibbleBit(Waarde); 25 variant Minimum(Getal1, Getal2); "
    "26 variant WhatBit(Bytte); 30 ModeToNr(text ModeStr); 31 text ModeToStr(Mode, Address); "
    "32 Ctl_Param(text ReadOrWrite, Address, text &Mode, text &Parameters=, integer &Aantal=255, Offset=0); "
    "33 Ctl_IRText(text ReadOrWrite, Offset, text Tekst); "
    "40 Ctl_Init(text ReadOrWrite, text &Parameters, Aantal=13, Offset=0); "
    "41 Ctl_Soft(text ReadOrWrite, SourceAdr, SourceSubAdr, &DestAdr, text &INofOut, &Parameters1, "
    "&Parameters2=0, boolean &HighFlank=True, boolean &LowFlank=True); 42 variant Ctl_Lang(text Taal); "
    "50 Preset(text ReadOrWrite, PresetNr, text &Tekst, MaxAdr, text &Data, &Delay1=0, &Delay2=0, "
    "&Simulation=0); 51 DPHPreset(PresetNr); 52 DPLPreset(PresetNr, adres); "
    "53 Simulation(text ReadOrWrite, Weekday, Uur, text &Data); "
    "54 SwitchTime(text ReadOrWrite, BlokNummer, &Dagen, &Uur, &Minuten, text &Data); "
    "60 integer ModuleType(text SerieNr); "
    "61 Module(text ReadOrWrite, text SerieNr, text &Data, &Offset=0, text &ModType=, &CPUtype=0, text "
    "&FWVersie=); 62 RXModuleVersie(text SerieNr); 63 text ConvertRXData(text SerieNr, text Data); "
    "64 text ConvertTXData(text SerieNr, text Data); 65 variant ConvertRXSub(text Data, Positie); "
    "66 variant ConvertTXSub(text Data, Positie); 67 text ConvertSim(text &Data); "
    "68 Sample(text ReadOrWrite, text SerieNr, SampleNr, BankAofB, text &Data); "
    "69 GSMtext(text ReadOrWrite, text SerieNr, Offset, text &Data); ";

TEST(MethodTable, NeverChanges) {
  std::string_view rest = declarations;
  for (const Method& method : methods()) {
    const auto end = rest.find("; ");
    ASSERT_EQ(declarationOf(method), rest.substr(0, end)) << "hosts would call something else";
    rest.remove_prefix(end + 2);
  }
  EXPECT_EQ(rest, "") << "a method has gone";
}

TEST(MethodTable, NamesInAnyCaseAndIdsFindTheirRow) {
  for (const Method& method : methods()) {
    for (const auto change : {&::toupper, &::tolower}) {
      std::string name(method.name);
      std::transform(name.begin(), name.end(), name.begin(), change);
      EXPECT_EQ(findMethod(name), &method) << name;
    }
    EXPECT_EQ(findMethod(method.id), &method) << method.name;
  }
  for (const char* name : {"", "Open", "OpenComm", "Ctl_Online", "Ctl_Text", "[", "LdZ[", "@"})
    EXPECT_EQ(findMethod(name), nullptr) << name;
  for (const int id : {-4, 0, 6, 255, 256, 1 << 30}) EXPECT_EQ(findMethod(id), nullptr) << id;
  EXPECT_EQ(findParameter(*findMethod("OpenCom"), "FASTCOM"), 2U);
  EXPECT_EQ(findParameter(*findMethod("OpenCom"), "port"), 0U);
  EXPECT_EQ(findParameter(*findMethod("OpenCom"), "Speed"), std::nullopt);
}

TEST(ResultCodes, AreTheDocumentedOnes) {
  std::string codes;
  for (const ResultCode& row : resultCodes()) codes += std::to_string(row.code) + " ";
  EXPECT_EQ(codes,
            "0 55 56 58 84 99 100 101 102 103 104 105 106 107 111 112 113 115 116 127 128 201 251 252 253 "
            "254 255 ");
  EXPECT_EQ(meaningOf(0) + ", " + meaningOf(252) + ", " + meaningOf(7),
            "done, no reply, or one of a wrong length, status 7 of the controller");
  std::map<ResultKind, std::string> names;
  for (const Method& method : methods()) names[resultKindOf(method)] += std::string(method.name) + " ";
  EXPECT_EQ(names[ResultKind::reply], "TranceivTcp TranCeiv ReadCom WriteCom ");
  EXPECT_EQ(
      names[ResultKind::code],
      "OpenCom CloseCom OpenTCP CloseTCP Ctl_Param Ctl_IRText Ctl_Init Ctl_Soft Ctl_Lang Preset Simulation "
      "SwitchTime Module RXModuleVersie Sample GSMtext ");
}

class Calls : public WatchedHouse {};

TEST_F(Calls, ResultsComeBackInTheArguments) {
  std::vector<Value> arguments{std::string("R"), Byte{5},           std::string("?"),
                               std::string(),    std::int16_t{255}, Byte{0}};
  EXPECT_EQ(findMethod("Ctl_Param")->call(serial, arguments.data()), Value(Byte{0}));
  EXPECT_EQ(arguments[2], Value(std::string("T1")));
  EXPECT_EQ(arguments[4], Value(std::int16_t{12}));
  findMethod("SerAddress")->put(serial, Byte{44});
  EXPECT_EQ(findMethod("SerAddress")->call(serial, nullptr), Value(Byte{44}));
}

/// A C++ program that leaves arguments out gets what every other host gets.
TEST_F(Calls, DefaultsOfTheClass) {
  Bytes items;
  EXPECT_EQ(serial.Ctl_Param("R", 5, "", items) + serial.Ctl_Param("W", 50, "RS"), 0);
  EXPECT_EQ(items.size(), 12U) << "all items, from the first";
  EXPECT_EQ(serial.Ctl_Init("R", items), 0);
  EXPECT_EQ(items.size(), 16U) << "13 positions and the 3 further bytes";
  requests.clear();
  EXPECT_EQ(outcome(serial.Ctl_Soft("W", 50, 0, 7, "O", 1)),
            "0: write 2 V 321F 87 10; read  1 V 32FE; write 1 V 32FE 11");
  EXPECT_EQ(serial.Preset("W", 5, Bytes(16, 'x'), 3, "old!"), 105) << "a first delay is needed";
  EXPECT_EQ(serial.Preset("W", 5, Bytes(16, 'x'), 3, "\1\1\1\1", 5), 0);
  EXPECT_EQ(sent().substr(65), "write 2 V 6708 05 FF; read  1 V 6712; write 1 V 6712 00");
  serial.SerAddress = 44;
  EXPECT_EQ(serial.CloseTCP() + serial.OpenTCP("house", 1000), 0);
  EXPECT_EQ(serial.SerAddress, 2);
  open(LinkKind::fast, {"status=5@*"});
  serial.TranCeiv(32, 5, 1, "");
  serial.ReadCom(1, 5, 1, "V");
  serial.WriteCom(1, 5, 1, "V", "x");
  EXPECT_EQ(requests.size(), 9U) << "three attempts each";
  EXPECT_EQ(serial.CloseCom() + serial.OpenCom(), 0);
  EXPECT_FALSE(serial.NoEcho) << "echo mode";
}

TEST_F(Calls, ArgumentsAreConvertedOrNamed) {
  const Method& method = *findMethod("ReadCom");
  std::array<bool, 5> given{true, true, true, true, false};
  std::array<Value, 5> arguments{std::string(" 3 "), 2.5, std::int16_t{16}, std::string("V"), Value()};
  EXPECT_FALSE(complete(method, arguments, given));
  EXPECT_EQ(arguments[0], Value(Byte{3}));
  EXPECT_EQ(arguments[1], Value(Byte{2}));
  EXPECT_EQ(arguments[4], Value(Byte{0}));
  const auto faultOf = [&](std::size_t at, const Value& value, bool isGiven) {
    auto bad = arguments;
    bad[at] = value;
    given[at] = isGiven;
    const auto fault = complete(method, bad, given);
    EXPECT_TRUE(fault && fault->parameter == at);
    return fault ? fault->reason : CallFault::notOptional;
  };
  EXPECT_EQ(faultOf(1, std::int32_t{256}, true), CallFault::overflow);
  EXPECT_EQ(faultOf(0, std::string("x"), true), CallFault::typeMismatch);
  EXPECT_EQ(faultOf(3, Value(), false), CallFault::notOptional);
}

}  // namespace
}  // namespace velk::test
