#include "component/result_codes.h"

#include <algorithm>
#include <array>

#include "component/method.h"

namespace velk {
namespace {

constexpr std::array codes{
    ResultCode{0, "done"},
    ResultCode{55, "the serial port is not open"},
    ResultCode{56, "the serial port is already open"},
    ResultCode{58, "the TCP link is not connected, or still in use"},
    ResultCode{84, "there is no open serial port to close"},
    ResultCode{99, "nothing was done"},
    ResultCode{100, "no reply or an unexpected one, or a failure without a code of its own"},
    ResultCode{101, "ReadOrWrite is neither R nor W"},
    ResultCode{102, "a count or a number is too large"},
    ResultCode{103, "Offset is out of range"},
    ResultCode{104, "the data have a wrong length, or the number is not for this module"},
    ResultCode{105, "a value is out of range"},
    ResultCode{106, "SerieNr does not have six characters"},
    ResultCode{107, "the controller did not take the module request"},
    ResultCode{111, "a mode is unknown or not allowed here"},
    ResultCode{112, "an address or a field is out of range"},
    ResultCode{113, "the preset number is out of range"},
    ResultCode{115, "SourceSubAdr is out of range"},
    ResultCode{116, "INofOut is neither I nor O"},
    ResultCode{127, "the module refused the request (127)"},
    ResultCode{128, "the module refused the request (128)"},
    ResultCode{201, "what was read back differs from what was written"},
    ResultCode{251, "only replies to other requests came"},
    ResultCode{252, "no reply, or one of a wrong length"},
    ResultCode{253, "a reply of a wrong length to a write"},
    ResultCode{254, "a wrong echo, a bad status or a foreign reply"},
    ResultCode{255, "the module refused the request (255)"},
};
static_assert(std::is_sorted(codes.begin(), codes.end(),
                             [](const ResultCode& a, const ResultCode& b) { return a.code < b.code; }));

struct Exception {
  std::string_view method;
  Outcome outcome;
};

/// The methods whose result is no result byte, by name.
constexpr std::array exceptions{
    Exception{"ConvertErr", Outcome::value},    Exception{"ConvertRXData", Outcome::value},
    Exception{"ConvertRXSub", Outcome::value},  Exception{"ConvertSim", Outcome::value},
    Exception{"ConvertTXData", Outcome::value}, Exception{"ConvertTXSub", Outcome::value},
    Exception{"DECtoBCD", Outcome::value},      Exception{"DPHPreset", Outcome::value},
    Exception{"DPLPreset", Outcome::value},     Exception{"IfSetBit", Outcome::value},
    Exception{"LdZr", Outcome::value},          Exception{"LowNibbleBit", Outcome::value},
    Exception{"Minimum", Outcome::value},       Exception{"ModeToNr", Outcome::value},
    Exception{"ModeToStr", Outcome::value},     Exception{"ModuleType", Outcome::value},
    Exception{"ReadCom", Outcome::reply},       Exception{"TranCeiv", Outcome::reply},
    Exception{"TranceivTcp", Outcome::reply},   Exception{"WhatBit", Outcome::value},
    Exception{"WriteCom", Outcome::reply},
};
static_assert(std::is_sorted(exceptions.begin(), exceptions.end(),
                             [](const Exception& a, const Exception& b) { return a.method < b.method; }));

}  // namespace

std::span<const ResultCode> resultCodes() {
  return codes;
}

std::string meaningOf(Byte code) {
  const auto* const found =
      std::find_if(codes.begin(), codes.end(), [&](const ResultCode& row) { return row.code == code; });
  if (found != codes.end()) return std::string(found->meaning);
  return "status " + std::to_string(code) + " of the controller";
}

Outcome outcomeOf(const Method& method) {
  if (method.kind == Kind::property) return Outcome::value;
  const auto* const found = std::find_if(exceptions.begin(), exceptions.end(),
                                         [&](const Exception& row) { return row.method == method.name; });
  return found == exceptions.end() ? Outcome::code : found->outcome;
}

}  // namespace velk
