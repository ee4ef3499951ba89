#include "component/serial.h"

#include "component/trap.h"
#include "controller/modes.h"
#include "link/serial_link.h"
#include "link/tcp_link.h"
#include "link/tcp_transaction.h"
#include "link/transaction.h"
#include "parameters/ctl_param.h"
#include "values/helpers.h"

namespace velk {

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
      link(), {.command = AtlBytes, .dph = DPHxram, .dpl = DPLxram, .data = Data, .instruction = Instructie},
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
  return values::ConvertErr(toNumber(ErrorNr));
}

Byte Serial::DECtoBCD(Byte Getal) {
  return values::DECtoBCD(Getal);
}

bool Serial::IfSetBit(Byte Bytte, Byte Bitnr) {
  return values::IfSetBit(Bytte, Bitnr);
}

Value Serial::LdZr(const Value& Getal, Byte Lengte) {
  return values::LdZr(toNumber(Getal), Lengte);
}

Byte Serial::LowNibbleBit(Byte Waarde) {
  return values::LowNibbleBit(Waarde);
}

Value Serial::Minimum(Byte Getal1, Byte Getal2) {
  return values::Minimum(Getal1, Getal2);
}

Value Serial::WhatBit(Byte Bytte) {
  const auto bit = values::WhatBit(Bytte);
  return bit ? Value(*bit) : Value();
}

Byte Serial::ModeToNr(const std::string& ModeStr) {
  return controller::ModeToNr(ModeStr);
}

std::string Serial::ModeToStr(Byte Mode, Byte Address) {
  return controller::ModeToStr(link::Memory(link()), Mode, Address);
}

Byte Serial::Ctl_Param(const std::string& ReadOrWrite, Byte Address, InOut<std::string> Mode,
                       InOut<Bytes> Parameters, InOut<std::int16_t> Aantal, Byte Offset) {
  return trapped([&] {
    parameters::Ctl_Param(
        link::Memory(link()), ReadOrWrite,
        {.address = Address, .mode = *Mode, .parameters = *Parameters, .count = *Aantal, .offset = Offset});
  });
}

}  // namespace velk
