#pragma once

#include <cstdint>
#include <string>

#include "component/in_out.h"
#include "link/settings.h"
#include "modules/identity.h"
#include "platform/host.h"
#include "values/bytes.h"
#include "values/runtime_error.h"
#include "values/value.h"

namespace velk {

namespace link {
struct Link;
class Memory;
}  // namespace link

/// One connection to the controller of the bus, over a serial port or TCP: the whole of what a host program
/// sees.
///
/// All data are byte strings (`Bytes`: one byte a character) or small numbers. Most methods return a result
/// byte: 0 is success, 99 nothing done yet, 100 an unexpected or missing reply, 101 to 116 and 201 a fault
/// that the method names, any other value the status of the transaction that failed (251 to 254: the link's
/// own codes, see `TranCeiv`). They trap run-time errors and return `ConvertErr` of them. The value helpers,
/// `ModeToStr`, `TranCeiv`, `ReadCom` and `WriteCom` let a run-time error reach the caller: a host as its own
/// error, a C++ program as `velk::RuntimeError`.
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
  explicit Serial(platform::Host& host);

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
  /// @param PassWord cut or padded with zero bytes to four; blank or left out: four zero bytes. Comes back
  ///   as it was used.
  /// @param RSAddress bus address of the controller, 2 to 99; any other value means 2.
  /// @return 0; 252 no connection or no such greeting; 58 the socket is in use (`CloseTCP` first); else the
  ///   interface's answer to the login. `TCP` is set also after a refused login.
  Byte OpenTCP(const std::string& IpAddress, std::int16_t PortNumber, InOut<std::string> PassWord = "",
               Byte RSAddress = 2);

  /// Closes the socket; no setting changes. Returns 0.
  Byte CloseTCP();

  /// One request to the Ethernet interface and its reply, in the frames of the kind in `SoortETH`.
  /// @param AtlPogingen sent to kind "Q"; here 0 means a wait of 2 s, any other value one until data come,
  ///   the connection ends or midnight passes.
  /// @param Functie 255 a controller frame, 240 the login; 241, which is answered by one byte, and others as
  ///   the interface takes them.
  /// @return what the reply carries, or one byte: 252 no reply, 254 a foreign header or length, 58 not
  ///   connected, 100 a reply too short for its fields.
  Bytes TranceivTcp(std::int16_t Protocol, std::int16_t ID, Byte AtlPogingen, Byte Functie,
                    const Bytes& Data);

  // --- Memory transactions

  /// One request to the controller over the open link, tried up to `AtlPogingen` times (0: three times).
  /// @param AtlBytes command byte: bits 0 to 3 byte count minus 1, bit 4 short reply, bit 5 direction "V",
  ///   bit 6 write, bit 7 a byte count of 128 or more.
  /// @param Instructie 2 memory access; 0 a short request whose good reply is one byte 0. Fast mode only.
  /// @return status byte and data, or one byte: 254 echo fault or bad status, 253 wrong reply length to a
  ///   write (echo mode), 252 no reply or a wrong length, 251 only foreign replies. Raises 8018 when the port
  ///   is not open.
  Bytes TranCeiv(Byte AtlBytes, Byte DPHxram, Byte DPLxram, const Bytes& Data, Byte AtlPogingen = 0,
                 Byte Instructie = 2);

  /// Reads `AtlBytes` bytes (1 to 16, 0 means 16; 144 means 16 from the high bank) at page `DPHxram`, offset
  /// `DPLxram`. `Richting` "V" selects the external memory, any other text the block area. Returns what
  /// `TranCeiv` does.
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
  /// @param Aantal number of items, 255 for all from `Offset` on, 0 for the mode only; on reading set to the
  ///   number meant.
  /// @param Offset number of the first item.
  /// @return 0; 99 part of a mode's code with items; 101 bad `ReadOrWrite`; 102 `Aantal`, 103 `Offset` too
  ///   large; 104 wrong length, 105 wrong value in `Parameters`; 111 bad mode, on reading: the number stored
  ///   is none of 1 to 21, as in an output that is not in use (`Mode` is then empty); 112 bad `Address`; else
  ///   the status of the failed transaction.
  Byte Ctl_Param(const std::string& ReadOrWrite, Byte Address, InOut<std::string> Mode,
                 InOut<Bytes> Parameters = "", InOut<std::int16_t> Aantal = std::int16_t{255},
                 Byte Offset = 0);

  /// Stores infrared text `Offset` (0 to 63), cut or padded with blanks to 16 characters, in the high bank of
  /// the block area: sixteen texts to a page, from page 10 on. Texts cannot be read: "R" returns 99.
  /// @return 0; 99; 101 bad `ReadOrWrite`; 103 `Offset` above 63; else the status of the transaction.
  Byte Ctl_IRText(const std::string& ReadOrWrite, Byte Offset, const Bytes& Tekst);

  // --- Controller configuration

  /// Reads or writes the positions `Offset` + 1 to `Offset` + `Aantal` of the initialisation block: 1 to 3
  /// settings (0x0004 to 0x0006), 4 and 5 controller bytes and 6 the kind derived from them (read only), 7 to
  /// 13 the clock as year, month, day, weekday, hours, minutes, seconds (0xFFFF down to 0xFFF9, BCD there and
  /// plain here; the weekday is 1 for Monday to 7 for Sunday, and 0 is taken too), 14 to 16 further bytes
  /// (0x0208 to 0x020A, read only). A write ends before the clock or covers positions 8 to 13; the clock then
  /// takes the last seven characters. A read that reaches position 13 appends the three further bytes. What
  /// was read before a failure stays in `Parameters`. With an `Aantal` of 0 a write transfers nothing; a read
  /// gives an empty text below `Offset` 6, nothing at 6 and the three further bytes at 13, but between them
  /// asks for what the link takes a count of 0 for: 16 bytes.
  /// @param ReadOrWrite "R" reads; "W", "RW" and "" write.
  /// @param Parameters the bytes; on reading replaced by those read.
  /// @return 0; 99 nothing transferred; 101 bad `ReadOrWrite`; 102 `Offset` + `Aantal` above 16; 103 `Offset`
  ///   above 13; 104 wrong length, or a part of the clock; 105 a byte out of its range; else the status of
  ///   the failed transaction. A failure in the middle of setting the clock can leave it held.
  Byte Ctl_Init(const std::string& ReadOrWrite, InOut<Bytes> Parameters, Byte Aantal = 13, Byte Offset = 0);

  /// Reads or writes the link of a source to a destination: two bytes at page `SourceAdr`, offset 31 + 2
  /// times `SourceSubAdr`, and its flank bits in the byte at offset 254.
  /// @param SourceAdr 0 to 124, but for 1, 2 and 100.
  /// @param SourceSubAdr 0 to 3.
  /// @param DestAdr output 1 to 127, group 129 to 255, or input; 0 removes an output link. On reading set.
  /// @param INofOut "O" output or group, "I" input; on reading set. An input link reads back as address 0.
  /// @param Parameters1 on reading set to the high nibble of the second byte.
  /// @param Parameters2 on reading set to its low nibble.
  /// @param HighFlank act on rising edges; output links only; on reading set.
  /// @param LowFlank act on falling edges, likewise.
  /// @return 0; 101 bad `ReadOrWrite`; 112 bad `SourceAdr`, or a link to itself; 115 bad `SourceSubAdr`; 116
  ///   bad `INofOut`; 100 a value that does not fit a byte; else the status of the failed transaction.
  Byte Ctl_Soft(const std::string& ReadOrWrite, Byte SourceAdr, Byte SourceSubAdr, InOut<Byte> DestAdr,
                InOut<std::string> INofOut, InOut<Byte> Parameters1, InOut<Byte> Parameters2 = 0,
                InOut<bool> HighFlank = true, InOut<bool> LowFlank = true);

  /// Writes all 29 display texts of a language (16 bytes at offset 40 of the pages 6 to 34), then reads them
  /// back.
  /// @param Taal "N" Dutch, "E" English, "F" French, "D" German, "B" or "P" Portuguese, "S" Spanish.
  /// @return 0; 105 no such language; 201 a text reads back differently; else the status of the failed
  ///   transaction. What was written before a failure stays.
  Value Ctl_Lang(const std::string& Taal);

  // --- Timed functions

  /// Reads or writes preset `PresetNr` (1 to 92): its text (16 bytes at offset 40 of page `PresetNr` + 34),
  /// the four-byte records 3 to `MaxAdr` (block area at `DPHPreset`, `DPLPreset`), two delays and the
  /// simulation flag (page 102 + (`PresetNr` - 1) / 4).
  /// @param ReadOrWrite "R" reads, anything else writes.
  /// @param Tekst exactly 16 characters.
  /// @param MaxAdr number of the last record, 3 to 99.
  /// @param Data the records, 4 bytes each; on writing one that contains a byte 1 is left as it is.
  /// @param Delay1 5 to 200, so a write has to give it.
  /// @param Delay2 0 for none or 5 to 200; both together at most 255.
  /// @param Simulation on reading 255 or 0; on writing anything but 0 sets the flag.
  /// @return 0; 104 wrong length; 105 bad delay; 112 bad `MaxAdr`; 113 bad `PresetNr`; else the status of the
  ///   failed transaction.
  Byte Preset(const std::string& ReadOrWrite, Byte PresetNr, InOut<std::string> Tekst, Byte MaxAdr,
              InOut<Bytes> Data, InOut<Byte> Delay1 = 0, InOut<Byte> Delay2 = 0, InOut<Byte> Simulation = 0);

  /// High address byte of the records of a preset.
  Byte DPHPreset(Byte PresetNr);

  /// Low address byte of record `adres` of a preset; 0 for preset 0 and above 92; run-time error 6 above 255.
  Byte DPLPreset(Byte PresetNr, Byte adres);

  /// Reads or writes the recorded events of a weekday (0 Monday to 6 Sunday) and hour (0 to 23): five-byte
  /// records closed by 255, in the high bank of the block area, page `Weekday` * 36 + the hour in BCD.
  /// @param ReadOrWrite "R" reads, anything else writes.
  /// @param Data the records. On a write their first two bytes are turned into BCD and the end mark is
  ///   appended in the caller's own text.
  /// @return 0; 105 bad weekday or hour; 100 a value without BCD; else the status of the failed transaction.
  Byte Simulation(const std::string& ReadOrWrite, Byte Weekday, Byte Uur, InOut<Bytes> Data);

  /// Reads or writes switch-time block `BlokNummer` (0 to 127), page `BlokNummer` + 128, from offset 200 on.
  /// @param ReadOrWrite "R" reads, anything else writes.
  /// @param Dagen day selection, bit 0 Monday to bit 6 Sunday.
  /// @param Uur hour, taken modulo 24.
  /// @param Minuten minute, modulo 60. All three 0 clear the block.
  /// @param Data two bytes (101 to 124, 1 to 4), or entries of three bytes whose first is 3 or more; empty
  ///   for a block without action, whose day selection is lost.
  /// @return 0; 104 wrong length; 105 a value out of its range; 100 a block or place that does not exist, or
  ///   a stored time that is not BCD; else the status of the failed transaction.
  Byte SwitchTime(const std::string& ReadOrWrite, Byte BlokNummer, InOut<Byte> Dagen, InOut<Byte> Uur,
                  InOut<Byte> Minuten, InOut<Bytes> Data);

  // --- Modules

  /// Turns the first two bytes of each five-byte record from BCD into numbers, in `Data` itself, and returns
  /// it. Run-time error 13 for a byte that is not BCD.
  Bytes ConvertSim(InOut<Bytes> Data);

  /// The module type of a six-digit serial number: 4, 5 or 7 for the prefixes that share a type, the prefix
  /// itself for some, the prefix modulo 8 for the rest. Any text gives a number.
  std::int16_t ModuleType(const std::string& SerieNr);

  /// Reads or writes the configuration record of module `SerieNr` (six digits) through the mailbox at 0x0000,
  /// in pieces of at most 16 bytes. Lengths and checks by module type: docs/modules.md.
  /// @param ReadOrWrite "R" reads, anything else writes.
  /// @param Data the record. A read that is refused before it gets to the record (an identification that
  ///   fails, 106) leaves the former value; one that fails later leaves what it has read so far.
  /// @param Offset number of the first piece; grows by 1 for a known model and by 1 for each piece.
  /// @param ModType model name; a known one on entry is kept, whatever the module reports.
  /// @param CPUtype CPU type.
  /// @param FWVersie firmware version, four digits; "1.0" with 090250 to 090270.
  /// @return 0; 99 an error before any other code, or no piece answered; 100 no or a strange reply; 103
  ///   `Offset` too large, 104 wrong length, 105, 111, 112 a value in `Data` out of range; 106 `SerieNr` is
  ///   not six characters; 107 the controller did not take the request; 127, 128, 255 the module's own code;
  ///   else the status of the failed transaction. A run-time error behind the first piece (an unplugged
  ///   adapter) ends with the code of the piece before it, which is 0: `Offset` tells how far it went.
  Byte Module(const std::string& ReadOrWrite, const std::string& SerieNr, InOut<Bytes> Data,
              InOut<Byte> Offset = 0, InOut<std::string> ModType = "", InOut<Byte> CPUtype = 0,
              InOut<std::string> FWVersie = "");

  /// Reads model name, CPU type and firmware version of a module, for `Module` to hand on, and finds out
  /// whether its model is known.
  /// @return 0, also for modules that have none; 100 no reply; 107 the controller did not take the request;
  ///   127, 128, 255 the module's own code; else the status of the failed transaction.
  Byte RXModuleVersie(const std::string& SerieNr);

  /// A record with its channel masks turned into the numbers 1 to 4, as `Module` does after reading.
  Bytes ConvertRXData(const std::string& SerieNr, const Bytes& Data);

  /// A record with its numbers 0 to 4 turned into channel masks, as `Module` does before writing. Run-time
  /// error 6 for a larger number, 5 for data too short.
  Bytes ConvertTXData(const std::string& SerieNr, const Bytes& Data);

  /// One mask turned into a number, at `Positie` (from 1). Run-time error 5 for a position outside the data.
  Value ConvertRXSub(const Bytes& Data, Byte Positie);

  /// One number turned into a mask, at `Positie` (from 1). Run-time errors as `ConvertTXData`.
  Value ConvertTXSub(const Bytes& Data, Byte Positie);

  /// Reads or writes sample `SampleNr` (0 to 239) in bank `BankAofB` (0 or 1) of a module, through the
  /// long-record buffer. Numbers up to 253 are let through; as no request can name them, they end with 99,
  /// behind the blocks of a write.
  /// @param Data up to 128 bytes; empty after a failed read.
  /// @return 0; 99 an error before any other code; 102, 104 bad `SampleNr` or length; 106 `SerieNr` is not
  ///   six characters; else the status of a transaction, the trigger or the module's reply code.
  Byte Sample(const std::string& ReadOrWrite, const std::string& SerieNr, Byte SampleNr, Byte BankAofB,
              InOut<Bytes> Data);

  /// Reads (64 bytes) or writes text record `Offset` of a GSM module, through the long-record buffer.
  /// @param Data the text. Keeps its former value when none was read, also with the result 0 that a trigger
  ///   gives which reads 0 behind a bad status or comes without its byte: docs/modules.md.
  /// @return 0; 99 an error; 100 no or a strange reply; 127, 128, 255 the module's own code; else the status
  ///   of a transaction or the trigger.
  Byte GSMtext(const std::string& ReadOrWrite, const std::string& SerieNr, Byte Offset, InOut<Bytes> Data);

 private:
  link::Link link();
  link::Memory memory();

  /// Runs the body of a module method, which sets its result as it goes.
  template <class Body>
  Byte trappedModule(Body body);

  platform::Host& host_;
  modules::Identity identity_;  ///< of the module read last
};

}  // namespace velk
