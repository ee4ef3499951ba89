#include "component/serial.h"

#include <algorithm>

#include "component/trap.h"
#include "controller/ctl_init.h"
#include "controller/ctl_lang.h"
#include "controller/ctl_soft.h"
#include "link/memory.h"
#include "link/serial_link.h"
#include "link/tcp_link.h"
#include "link/tcp_transaction.h"
#include "link/transaction.h"
#include "modules/conversion.h"
#include "modules/gsm_text.h"
#include "modules/model.h"
#include "modules/module.h"
#include "modules/sample.h"
#include "modules/version.h"
#include "parameters/ctl_irtext.h"
#include "parameters/ctl_param.h"
#include "parameters/modes.h"
#include "timed/preset.h"
#include "timed/simulation.h"
#include "timed/switch_time.h"
#include "values/bits.h"
#include "values/numbers.h"
#include "values/result.h"

namespace velk {

// Inline: in a shared library a call of an exported function takes longer than this one itself.
inline link::Link Serial::link() {
  return {.settings = *this, .host = host_};
}

inline link::Memory Serial::memory() {
  return link::Memory(link());
}

template <class Body>
Byte Serial::trappedModule(Body body) {
  // A run-time error in here gives the code set last, not a converted error number.
  Byte result = nothingDone;
  try {
    const link::Memory memory(link());
    body(modules::Mailbox(memory, host_), result);
  } catch (const link::Stop& stop) {
    result = stop.result;
  } catch (const RuntimeError&) {  // NOLINT(bugprone-empty-catch): see above
  }
  return result;
}

Serial::Serial(platform::Host& host) : host_(host) {}

Byte Serial::OpenCom(Byte Port, std::int16_t Baudrate, bool FastCom) {
  return trapped([&] { link::openCom(link(), Port, Baudrate, FastCom); });
}

Byte Serial::CloseCom() {
  return trapped([&] { link::closeCom(link()); });
}

Byte Serial::OpenTCP(const std::string& IpAddress, std::int16_t PortNumber, InOut<std::string> PassWord,
                     Byte RSAddress) {
  return trapped([&] { return link::openTcp(link(), IpAddress, PortNumber, *PassWord, RSAddress); });
}

Byte Serial::CloseTCP() {
  return trapped([&] { link::closeTcp(link()); });
}

Bytes Serial::TranceivTcp(std::int16_t Protocol, std::int16_t ID, Byte AtlPogingen, Byte Functie,
                          const Bytes& Data) {
  return link::tranceivTcp(
      link(), {.protocol = Protocol, .id = ID, .attempts = AtlPogingen, .function = Functie, .data = Data});
}

Bytes Serial::TranCeiv(Byte AtlBytes, Byte DPHxram, Byte DPLxram, const Bytes& Data, Byte AtlPogingen,
                       Byte Instructie) {
  return link::tranCeiv(
      link(), {.command = AtlBytes, .high = DPHxram, .low = DPLxram, .data = Data, .instruction = Instructie},
      AtlPogingen);
}

Bytes Serial::ReadCom(Byte AtlBytes, Byte DPHxram, Byte DPLxram, const std::string& Richting,
                      Byte AtlPogingen) {
  return link::readCom(link(), AtlBytes, DPHxram, DPLxram, Richting, AtlPogingen);
}

Bytes Serial::WriteCom(Byte AtlBytes, Byte DPHxram, Byte DPLxram, const std::string& Richting,
                       const Bytes& Data, Byte AtlPogingen) {
  return link::writeCom(link(), AtlBytes, DPHxram, DPLxram, Richting, Data, AtlPogingen);
}

Byte Serial::ConvertErr(const Value& ErrorNr) {
  return resultOfError(toNumber(ErrorNr));
}

Byte Serial::DECtoBCD(Byte Getal) {
  return toBcd(Getal);
}

bool Serial::IfSetBit(Byte Bytte, Byte Bitnr) {
  return testBit(Bytte, Bitnr);
}

Value Serial::LdZr(const Value& Getal, Byte Lengte) {
  return zeroPadded(toNumber(Getal), Lengte);
}

Byte Serial::LowNibbleBit(Byte Waarde) {
  return lowestBit(Waarde & 15).value_or(0);
}

Value Serial::Minimum(Byte Getal1, Byte Getal2) {
  return std::min(Getal1, Getal2);
}

Value Serial::WhatBit(Byte Bytte) {
  const auto bit = lowestBit(Bytte);
  return bit ? Value(*bit) : Value();
}

Byte Serial::ModeToNr(const std::string& ModeStr) {
  return parameters::ModeToNr(ModeStr);
}

std::string Serial::ModeToStr(Byte Mode, Byte Address) {
  return parameters::ModeToStr(memory(), Mode, Address);
}

Byte Serial::Ctl_Param(const std::string& ReadOrWrite, Byte Address, InOut<std::string> Mode,
                       InOut<Bytes> Parameters, InOut<std::int16_t> Aantal, Byte Offset) {
  return trapped([&] {
    parameters::Ctl_Param(
        memory(), ReadOrWrite,
        {.output = Address, .mode = *Mode, .parameters = *Parameters, .count = *Aantal, .offset = Offset});
  });
}

Byte Serial::Ctl_IRText(const std::string& ReadOrWrite, Byte Offset, const Bytes& Tekst) {
  return trapped([&] { return parameters::Ctl_IRText(memory(), ReadOrWrite, Offset, Tekst); });
}

Byte Serial::Ctl_Init(const std::string& ReadOrWrite, InOut<Bytes> Parameters, Byte Aantal, Byte Offset) {
  return trapped([&] { return controller::Ctl_Init(memory(), ReadOrWrite, *Parameters, Aantal, Offset); });
}

Byte Serial::Ctl_Soft(const std::string& ReadOrWrite, Byte SourceAdr, Byte SourceSubAdr, InOut<Byte> DestAdr,
                      InOut<std::string> INofOut, InOut<Byte> Parameters1, InOut<Byte> Parameters2,
                      InOut<bool> HighFlank, InOut<bool> LowFlank) {
  return trapped([&] {
    controller::Ctl_Soft(memory(), ReadOrWrite,
                         {.source = SourceAdr,
                          .sub = SourceSubAdr,
                          .destination = *DestAdr,
                          .kind = *INofOut,
                          .parameters1 = *Parameters1,
                          .parameters2 = *Parameters2,
                          .highFlank = *HighFlank,
                          .lowFlank = *LowFlank});
  });
}

Value Serial::Ctl_Lang(const std::string& Taal) {
  // The result is a 16-bit number; only the code of a run-time error is a byte.
  try {
    controller::Ctl_Lang(memory(), Taal);
    return std::int16_t{0};
  } catch (const link::Stop& stop) {
    return std::int16_t{stop.result};
  } catch (const RuntimeError& error) {
    return resultOfError(error.number());
  }
}

Byte Serial::Preset(const std::string& ReadOrWrite, Byte PresetNr, InOut<std::string> Tekst, Byte MaxAdr,
                    InOut<Bytes> Data, InOut<Byte> Delay1, InOut<Byte> Delay2, InOut<Byte> Simulation) {
  return trapped([&] {
    timed::Preset(memory(), ReadOrWrite,
                  {.number = PresetNr,
                   .text = *Tekst,
                   .lastRecord = MaxAdr,
                   .data = *Data,
                   .delay1 = *Delay1,
                   .delay2 = *Delay2,
                   .simulation = *Simulation});
  });
}

Byte Serial::DPHPreset(Byte PresetNr) {
  return timed::DPHPreset(PresetNr);
}

Byte Serial::DPLPreset(Byte PresetNr, Byte adres) {
  return timed::DPLPreset(PresetNr, adres);
}

Byte Serial::Simulation(const std::string& ReadOrWrite, Byte Weekday, Byte Uur, InOut<Bytes> Data) {
  return trapped([&] { timed::Simulation(memory(), ReadOrWrite, Weekday, Uur, *Data); });
}

Byte Serial::SwitchTime(const std::string& ReadOrWrite, Byte BlokNummer, InOut<Byte> Dagen, InOut<Byte> Uur,
                        InOut<Byte> Minuten, InOut<Bytes> Data) {
  return trapped([&] {
    timed::SwitchTime(memory(), ReadOrWrite,
                      {.block = BlokNummer, .days = *Dagen, .hour = *Uur, .minute = *Minuten, .data = *Data});
  });
}

Bytes Serial::ConvertSim(InOut<Bytes> Data) {
  return timed::ConvertSim(*Data);
}

std::int16_t Serial::ModuleType(const std::string& SerieNr) {
  return modules::ModuleType(SerieNr);
}

Byte Serial::Module(const std::string& ReadOrWrite, const std::string& SerieNr, InOut<Bytes> Data,
                    InOut<Byte> Offset, InOut<std::string> ModType, InOut<Byte> CPUtype,
                    InOut<std::string> FWVersie) {
  return trappedModule([&](const modules::Mailbox& mailbox, Byte& result) {
    modules::Module(mailbox, ReadOrWrite,
                    {.serialNumber = SerieNr,
                     .data = *Data,
                     .offset = *Offset,
                     .model = *ModType,
                     .cpuType = *CPUtype,
                     .firmware = *FWVersie},
                    identity_, result);
  });
}

Byte Serial::RXModuleVersie(const std::string& SerieNr) {
  return trapped([&] {
    const link::Memory memory(link());
    return modules::RXModuleVersie(modules::Mailbox(memory, host_), SerieNr, identity_);
  });
}

Bytes Serial::ConvertRXData(const std::string& SerieNr, const Bytes& Data) {
  return modules::ConvertRXData({.serialNumber = SerieNr, .known = identity_.known}, Data);
}

Bytes Serial::ConvertTXData(const std::string& SerieNr, const Bytes& Data) {
  return modules::ConvertTXData({.serialNumber = SerieNr, .known = identity_.known}, Data);
}

Value Serial::ConvertRXSub(const Bytes& Data, Byte Positie) {
  return modules::ConvertRXSub(Data, Positie);
}

Value Serial::ConvertTXSub(const Bytes& Data, Byte Positie) {
  return modules::ConvertTXSub(Data, Positie);
}

Byte Serial::Sample(const std::string& ReadOrWrite, const std::string& SerieNr, Byte SampleNr, Byte BankAofB,
                    InOut<Bytes> Data) {
  return trappedModule([&](const modules::Mailbox& mailbox, Byte& result) {
    result = modules::Sample(mailbox, ReadOrWrite,
                             {.serialNumber = SerieNr, .number = SampleNr, .bank = BankAofB, .data = *Data});
  });
}

Byte Serial::GSMtext(const std::string& ReadOrWrite, const std::string& SerieNr, Byte Offset,
                     InOut<Bytes> Data) {
  return trappedModule([&](const modules::Mailbox& mailbox, Byte& result) {
    modules::GSMtext(mailbox, ReadOrWrite, SerieNr, Offset, *Data, result);
  });
}

}  // namespace velk
