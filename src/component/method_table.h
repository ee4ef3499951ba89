#pragma once

#include "component/method.h"
#include "component/serial.h"

namespace velk {

/// Every method and property of `Serial`: the one list that the COM dispatch, the type library, the command
/// line and the printed reference are made from. Dispatch ids are fixed for ever: a new method has a new one.
template <class B>
consteval auto methodTable() {
  return std::array{
      property<&Serial::FlgBreak, B>(1, "FlgBreak", "The next serial transaction first sends a line break."),
      property<&Serial::SerAddress, B>(2, "SerAddress", "Bus address of the controller, sent in fast mode."),
      property<&Serial::NoEcho, B>(3, "NoEcho", "False: echo mode. True: fast mode."),
      property<&Serial::TCP, B>(4, "TCP", "True: transactions go over the socket."),
      property<&Serial::SoortETH, B>(5, "SoortETH", "Kind of Ethernet interface, Q or S."),

      method<&Serial::OpenCom, B>(10, "OpenCom", {{"Port", 1}, {"Baudrate", 9600}, {"FastCom", 0}},
                                  "Opens a serial port to the bus, in echo mode or fast mode."),
      method<&Serial::CloseCom, B>(11, "CloseCom", {}, "Closes the serial port."),
      method<&Serial::OpenTCP, B>(12, "OpenTCP",
                                  {"IpAddress", "PortNumber", {"PassWord", ""}, {"RSAddress", 2}},
                                  "Connects to the Ethernet interface and logs in."),
      method<&Serial::CloseTCP, B>(13, "CloseTCP", {}, "Closes the TCP connection."),
      method<&Serial::TranceivTcp, B>(14, "TranceivTcp", {"Protocol", "ID", "AtlPogingen", "Functie", "Data"},
                                      "One request to the Ethernet interface and its reply."),
      method<&Serial::TranCeiv, B>(
          15, "TranCeiv", {"AtlBytes", "DPHxram", "DPLxram", "Data", {"AtlPogingen", 0}, {"Instructie", 2}},
          "One request to the controller, with its attempts."),
      method<&Serial::ReadCom, B>(16, "ReadCom",
                                  {"AtlBytes", "DPHxram", "DPLxram", "Richting", {"AtlPogingen", 0}},
                                  "Reads bytes of the controller's memory."),
      method<&Serial::WriteCom, B>(17, "WriteCom",
                                   {"AtlBytes", "DPHxram", "DPLxram", "Richting", "Data", {"AtlPogingen", 0}},
                                   "Writes bytes of the controller's memory."),

      method<&Serial::ConvertErr, B>(20, "ConvertErr", {"ErrorNr"},
                                     "The result byte for a platform error number."),
      method<&Serial::DECtoBCD, B>(21, "DECtoBCD", {"Getal"}, "Packed BCD of a number from 0 to 159."),
      method<&Serial::IfSetBit, B>(22, "IfSetBit", {"Bytte", "Bitnr"}, "Whether a bit of a byte is 1."),
      method<&Serial::LdZr, B>(23, "LdZr", {"Getal", "Lengte"}, "A number with leading zeros."),
      method<&Serial::LowNibbleBit, B>(24, "LowNibbleBit", {"Waarde"}, "The lowest set bit of the low four."),
      method<&Serial::Minimum, B>(25, "Minimum", {"Getal1", "Getal2"}, "The smaller of two bytes."),
      method<&Serial::WhatBit, B>(26, "WhatBit", {"Bytte"},
                                  "The lowest set bit of a byte; empty when none is."),

      method<&Serial::ModeToNr, B>(30, "ModeToNr", {"ModeStr"}, "The number of an output mode code."),
      method<&Serial::ModeToStr, B>(31, "ModeToStr", {"Mode", "Address"},
                                    "The code of an output mode number."),
      method<&Serial::Ctl_Param, B>(
          32, "Ctl_Param",
          {"ReadOrWrite", "Address", "Mode", {"Parameters", ""}, {"Aantal", 255}, {"Offset", 0}},
          "Reads or writes the mode and the parameters of an output."),
      method<&Serial::Ctl_IRText, B>(33, "Ctl_IRText", {"ReadOrWrite", "Offset", "Tekst"},
                                     "Stores an infrared text."),

      method<&Serial::Ctl_Init, B>(40, "Ctl_Init",
                                   {"ReadOrWrite", "Parameters", {"Aantal", 13}, {"Offset", 0}},
                                   "Reads or writes the initialisation block and the clock."),
      method<&Serial::Ctl_Soft, B>(41, "Ctl_Soft",
                                   {"ReadOrWrite",
                                    "SourceAdr",
                                    "SourceSubAdr",
                                    "DestAdr",
                                    "INofOut",
                                    "Parameters1",
                                    {"Parameters2", 0},
                                    {"HighFlank", -1},
                                    {"LowFlank", -1}},
                                   "Reads or writes the link of an input to its destination."),
      method<&Serial::Ctl_Lang, B>(42, "Ctl_Lang", {"Taal"},
                                   "Writes and checks the display texts of a language."),

      method<&Serial::Preset, B>(50, "Preset",
                                 {"ReadOrWrite",
                                  "PresetNr",
                                  "Tekst",
                                  "MaxAdr",
                                  "Data",
                                  {"Delay1", 0},
                                  {"Delay2", 0},
                                  {"Simulation", 0}},
                                 "Reads or writes a preset."),
      method<&Serial::DPHPreset, B>(51, "DPHPreset", {"PresetNr"},
                                    "High address byte of a preset's records."),
      method<&Serial::DPLPreset, B>(52, "DPLPreset", {"PresetNr", "adres"},
                                    "Low address byte of a preset's record."),
      method<&Serial::Simulation, B>(53, "Simulation", {"ReadOrWrite", "Weekday", "Uur", "Data"},
                                     "Reads or writes the recorded events of a weekday and hour."),
      method<&Serial::SwitchTime, B>(54, "SwitchTime",
                                     {"ReadOrWrite", "BlokNummer", "Dagen", "Uur", "Minuten", "Data"},
                                     "Reads or writes a switch-time block."),

      method<&Serial::ModuleType, B>(60, "ModuleType", {"SerieNr"}, "The module type of a serial number."),
      method<&Serial::Module, B>(61, "Module",
                                 {"ReadOrWrite",
                                  "SerieNr",
                                  "Data",
                                  {"Offset", 0},
                                  {"ModType", ""},
                                  {"CPUtype", 0},
                                  {"FWVersie", ""}},
                                 "Reads or writes the record of a module."),
      method<&Serial::RXModuleVersie, B>(62, "RXModuleVersie", {"SerieNr"},
                                         "Reads model, CPU type and firmware of a module."),
      method<&Serial::ConvertRXData, B>(63, "ConvertRXData", {"SerieNr", "Data"},
                                        "A module record as hosts see it."),
      method<&Serial::ConvertTXData, B>(64, "ConvertTXData", {"SerieNr", "Data"},
                                        "A module record as it is sent."),
      method<&Serial::ConvertRXSub, B>(65, "ConvertRXSub", {"Data", "Positie"},
                                       "A channel mask as a number."),
      method<&Serial::ConvertTXSub, B>(66, "ConvertTXSub", {"Data", "Positie"},
                                       "A number as a channel mask."),
      method<&Serial::ConvertSim, B>(67, "ConvertSim", {"Data"},
                                     "Turns the times of simulation records from BCD."),
      method<&Serial::Sample, B>(68, "Sample", {"ReadOrWrite", "SerieNr", "SampleNr", "BankAofB", "Data"},
                                 "Reads or writes a sample of a module."),
      method<&Serial::GSMtext, B>(69, "GSMtext", {"ReadOrWrite", "SerieNr", "Offset", "Data"},
                                  "Reads or writes a text of a GSM module."),
  };
}

}  // namespace velk
