#include "component/result_codes.h"

#include <algorithm>
#include <array>

#include "component/method.h"
#include "values/result.h"

namespace velk {
namespace {

constexpr std::array codes{
    ResultCode{success, "done"},
    ResultCode{portNotOpen, "the serial port is not open"},
    ResultCode{portAlreadyOpen, "the serial port is already open"},
    ResultCode{notConnected, "the TCP link is not connected, or still in use"},
    ResultCode{nothingToClose, "there is no open serial port to close"},
    ResultCode{nothingDone, "nothing was done"},
    ResultCode{otherFailure, "no reply or an unexpected one, or a failure without a code of its own"},
    ResultCode{badSelector, "ReadOrWrite is neither R nor W"},
    ResultCode{countTooLarge, "a count or a number is too large"},
    ResultCode{badOffset, "Offset is out of range"},
    ResultCode{wrongLength, "the data have a wrong length, or the number is not for this module"},
    ResultCode{badValue, "a value is out of range"},
    ResultCode{badSerialNumber, "SerieNr does not have six characters"},
    ResultCode{controllerBusy, "the controller did not take the module request"},
    ResultCode{badMode, "a mode is unknown or not allowed here"},
    ResultCode{badAddress, "an address or a field is out of range"},
    ResultCode{badPreset, "the preset number is out of range"},
    ResultCode{badSubAddress, "SourceSubAdr is out of range"},
    ResultCode{badLinkKind, "INofOut is neither I nor O"},
    ResultCode{moduleRefused127, "the module refused the request (127)"},
    ResultCode{moduleRefused128, "the module refused the request (128)"},
    ResultCode{readsBackDifferent, "what was read back differs from what was written"},
    ResultCode{noMatchingReply, "only replies to other requests came"},
    ResultCode{noReply, "no reply, or one of a wrong length"},
    ResultCode{wrongWriteReply, "a reply of a wrong length to a write"},
    ResultCode{echoFault, "a wrong echo, a bad status or a foreign reply"},
    ResultCode{moduleRefused255, "the module refused the request (255)"},
};
static_assert(std::is_sorted(codes.begin(), codes.end(),
                             [](const ResultCode& a, const ResultCode& b) { return a.code < b.code; }));

struct Exception {
  std::string_view method;
  ResultKind kind;
};

/// The methods whose result is no result byte, by name.
constexpr std::array exceptions{
    Exception{"ConvertErr", ResultKind::value},    Exception{"ConvertRXData", ResultKind::value},
    Exception{"ConvertRXSub", ResultKind::value},  Exception{"ConvertSim", ResultKind::value},
    Exception{"ConvertTXData", ResultKind::value}, Exception{"ConvertTXSub", ResultKind::value},
    Exception{"DECtoBCD", ResultKind::value},      Exception{"DPHPreset", ResultKind::value},
    Exception{"DPLPreset", ResultKind::value},     Exception{"IfSetBit", ResultKind::value},
    Exception{"LdZr", ResultKind::value},          Exception{"LowNibbleBit", ResultKind::value},
    Exception{"Minimum", ResultKind::value},       Exception{"ModeToNr", ResultKind::value},
    Exception{"ModeToStr", ResultKind::value},     Exception{"ModuleType", ResultKind::value},
    Exception{"ReadCom", ResultKind::reply},       Exception{"TranCeiv", ResultKind::reply},
    Exception{"TranceivTcp", ResultKind::reply},   Exception{"WhatBit", ResultKind::value},
    Exception{"WriteCom", ResultKind::reply},
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

ResultKind resultKindOf(const Method& method) {
  if (method.kind == Kind::property) return ResultKind::value;
  const auto* const found = std::find_if(exceptions.begin(), exceptions.end(),
                                         [&](const Exception& row) { return row.method == method.name; });
  return found == exceptions.end() ? ResultKind::code : found->kind;
}

}  // namespace velk
