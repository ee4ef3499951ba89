#pragma once

#include <cstdint>
#include <string>

#include "component/in_out.h"
#include "link/link.h"
#include "link/settings.h"
#include "platform/host.h"
#include "values/bytes.h"
#include "values/value.h"

namespace velk {

/// One connection to the controller of the bus, over a serial port or TCP: the whole of what a host program
/// sees.
///
/// All data are byte strings (`Bytes`: one byte a character) or small numbers. Most methods return a result
/// byte: 0 is success, 99 nothing done yet, 100 an unexpected or missing reply, 101 to 116 and 201 a fault
/// that the method names, any other value the status of the transaction that failed (251 to 254: the link's
/// own codes, see `TranCeiv`). They trap run-time errors and return `ConvertErr` of them. The value helpers,
/// `ModeToStr`, `TranCeiv`, `ReadCom` and `WriteCom` let a run-time error reach the caller as `RuntimeError`.
///
/// Addresses of the controller's memory are 16 bits, named page (high byte) and offset (low byte). Arguments
/// of type `InOut` are written back into the caller's variable, also when the method fails half-way.
///
/// All objects of a thread share one port and one socket. An object is used on one thread only, and not from
/// a message handler that runs while one of its methods waits.
class Serial : public link::Settings {
 public:
  /// Uses the port, socket and clock of the calling thread.
  Serial() : Serial(platform::threadHost()) {}

  /// Uses another host, for example a simulated one.
  explicit Serial(platform::Host& host) : host_(host) {}

  // --- The link over a serial port

  /// Opens serial port `Port` (1 to 255) at `Baudrate` bit/s, 8N1, no handshake, RTS on, and waits 0.5 s for
  /// the interface. `FastCom` selects fast mode, else echo mode; it is taken over, and `TCP` cleared, even
  /// when the port does not open. Returns 0; 56 the port is already open, here or in another program; 100
  /// there is no such port or it cannot be set to the rate.
  Byte OpenCom(Byte Port = 1, std::int16_t Baudrate = 9600, bool FastCom = false);

  /// Closes the serial port. Returns 0, or 84 when none is open.
  Byte CloseCom();

  // --- The link over TCP

  /// Connects to the Ethernet interface at a host name or address, recognises its kind by the greeting, and
  /// logs in where it asks for that. Connecting and greeting may take 1.5 s together.
  /// @param PortNumber TCP port; for ports above 32767 the port minus 65536.
  /// @param PassWord cut or padded with zero bytes to four; blank or left out: four zero bytes. Comes back as
  /// used.
  /// @param RSAddress bus address of the controller, 2 to 99; any other value means 2.
  /// @return 0; 252 no connection or no such greeting; 58 the socket is in use (`CloseTCP` first); else the
  ///   interface's answer to the login. `TCP` is set also after a refused login.
  Byte OpenTCP(const std::string& IpAddress, std::int16_t PortNumber, InOut<std::string> PassWord = "",
               Byte RSAddress = 2);

  /// Closes the socket; no setting changes. Returns 0.
  Byte CloseTCP();

  /// One request to the Ethernet interface and its reply, in the frames of the kind in `SoortETH`.
  /// @param AtlPogingen sent to kind "Q"; here 0 means a wait of 2 s, any other value one until data come,
  /// the
  ///   connection ends or midnight passes.
  /// @param Functie 255 a controller frame, 240 the login, 241 and others as the interface takes them.
  /// @return what the reply carries, or one byte: 252 no reply, 254 a foreign header or length, 58 not
  /// connected,
  ///   100 a reply too short for its fields.
  Bytes TranceivTcp(std::int16_t Protocol, std::int16_t ID, Byte AtlPogingen, Byte Functie,
                    const Bytes& Data);

  // --- Memory transactions

  /// One request to the controller over the open link, tried up to `AtlPogingen` times (0: three times).
  /// @param AtlBytes command byte: bits 0 to 3 byte count minus 1, bit 4 short reply, bit 5 direction "V",
  /// bit 6
  ///   write, bit 7 a byte count of 128 or more.
  /// @param Instructie 2 memory access; 0 a short request whose good reply is one byte 0. Fast mode only.
  /// @return status byte and data, or one byte: 254 echo fault or bad status, 253 wrong reply length to a
  /// write,
  ///   252 no reply or a wrong length, 251 only foreign replies. Raises 8018 when the port is not open.
  Bytes TranCeiv(Byte AtlBytes, Byte DPHxram, Byte DPLxram, const Bytes& Data, Byte AtlPogingen = 0,
                 Byte Instructie = 2);

  /// Reads `AtlBytes` bytes (1 to 16, 0 means 16; 144 means 16 from the high bank) at page `DPHxram`, offset
  /// `DPLxram`. `Richting` "V" selects the external memory, any other text the block area. Returns as
  /// `TranCeiv`.
  Bytes ReadCom(Byte AtlBytes, Byte DPHxram, Byte DPLxram, const std::string& Richting, Byte AtlPogingen = 0);

  /// Writes `Data` there. Its length is not checked against `AtlBytes`. Returns the status, in fast mode over
  /// the serial line followed by "#".
  Bytes WriteCom(Byte AtlBytes, Byte DPHxram, Byte DPLxram, const std::string& Richting, const Bytes& Data,
                 Byte AtlPogingen = 0);

  // --- Value helpers

  /// The result byte for a platform error number: 8005 gives 56, 8012 gives 84, 8018 gives 55, 40006 and
  /// 40020 give 58, any other 100.
  Byte ConvertErr(const Value& ErrorNr);

  /// Packed BCD of a number from 0 to 159; run-time error 6 above.
  Byte DECtoBCD(Byte Getal);

  /// Whether bit `Bitnr` of `Bytte` is 1; false for bits 8 to 29, run-time error 6 above.
  bool IfSetBit(Byte Bytte, Byte Bitnr);

  /// The number with leading zeros, in exactly `Lengte` characters: its last ones where it has more. The sign
  /// of a negative number is lost.
  Value LdZr(const Value& Getal, Byte Lengte);

  /// The number of the lowest bit that is 1 among the low four; 0 when none is.
  Byte LowNibbleBit(Byte Waarde);

  /// The smaller of two bytes.
  Value Minimum(Byte Getal1, Byte Getal2);

  /// The number (0 to 7) of the lowest bit that is 1; empty when none is.
  Value WhatBit(Byte Bytte);

  // --- Output modes and parameters

  /// The number (1 to 21) of a two-letter output mode; 0 when the text is not found. Any part of the list of
  /// codes is found and gives the nearest number.
  Byte ModeToNr(const std::string& ModeStr);

  /// The two-letter code of a mode number, empty outside 1 to 21. For number 4 the byte at 0x10FF minus
  /// `Address` is read to tell "RO" from "DI"; run-time error 5 when the reply is empty.
  std::string ModeToStr(Byte Mode, Byte Address);

  /// Reads or writes the mode and the parameter items of output `Address` (1 to 99), which lie in the page
  /// with the output's number: the mode at offset 1, the items by mode (docs/outputs.md).
  /// @param ReadOrWrite "R" reads; "W", "RW" and "" write.
  /// @param Mode two-letter mode; on reading set to the one stored.
  /// @param Parameters the items, one character each.
  /// @param Aantal number of items, 255 for all from `Offset` on; on reading set to the number meant. 0: the
  ///   mode only.
  /// @param Offset number of the first item.
  /// @return 0; 101 bad `ReadOrWrite`; 102 `Aantal`, 103 `Offset` too large; 104 wrong length, 105 wrong
  /// value in
  ///   `Parameters`; 111 bad mode; 112 bad `Address`; else the status of the failed transaction.
  Byte Ctl_Param(const std::string& ReadOrWrite, Byte Address, InOut<std::string> Mode,
                 InOut<Bytes> Parameters = "", InOut<std::int16_t> Aantal = std::int16_t{255},
                 Byte Offset = 0);

 private:
  link::Link link() { return {.settings = *this, .host = host_}; }

  platform::Host& host_;
};

}  // namespace velk
