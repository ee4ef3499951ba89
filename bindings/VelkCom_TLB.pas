// Printed from VelkCom's method table and its comments; see CONTRIBUTING.md.
// VelkCom: configuration of home-automation bus controllers.
//
// Early-bound declarations for Delphi and Free Pascal:
//
//     Serial := CoSerial.Create;
//     Result := Serial.OpenCom(3, 9600, False);
//
// A WideString carries bytes: one character each, 0 to 255. All arguments are given; what stands for one that another
// language leaves out is told beside each method. Methods that raise a run-time error raise EOleException, whose
// ErrorCode is $800A0000 plus the error's number.
unit VelkCom_TLB;

{$IFDEF FPC}{$MODE DELPHI}{$ENDIF}

interface

uses
  ActiveX, ComObj;

const
  LIBID_VelkCom: TGUID = '{5694BB07-4353-4508-8C6C-0B988D8DD518}';
  DIID__Serial: TGUID = '{9CFAE593-9198-4D82-A6D5-ADC2BBE2EB02}';
  CLASS_Serial: TGUID = '{DD354E3B-3B0A-4871-81E2-879F41FB2B63}';

  // What a result byte says. Any other is a status that the controller gave.
  // Done.
  ResultSuccess = 0;
  // The serial port is not open.
  ResultPortNotOpen = 55;
  // The serial port is already open.
  ResultPortAlreadyOpen = 56;
  // The TCP link is not connected, or still in use.
  ResultNotConnected = 58;
  // There is no open serial port to close.
  ResultNothingToClose = 84;
  // Nothing was done.
  ResultNothingDone = 99;
  // No reply or an unexpected one, or a failure without a code of its own.
  ResultOtherFailure = 100;
  // ReadOrWrite is neither R nor W.
  ResultBadSelector = 101;
  // A count or a number is too large.
  ResultCountTooLarge = 102;
  // Offset is out of range.
  ResultBadOffset = 103;
  // The data have a wrong length, or the number is not for this module.
  ResultWrongLength = 104;
  // A value is out of range.
  ResultBadValue = 105;
  // SerieNr does not have six characters.
  ResultBadSerialNumber = 106;
  // The controller did not take the module request.
  ResultControllerBusy = 107;
  // A mode is unknown or not allowed here.
  ResultBadMode = 111;
  // An address or a field is out of range.
  ResultBadAddress = 112;
  // The preset number is out of range.
  ResultBadPreset = 113;
  // SourceSubAdr is out of range.
  ResultBadSubAddress = 115;
  // INofOut is neither I nor O.
  ResultBadLinkKind = 116;
  // The module refused the request (127).
  ResultModuleRefused127 = 127;
  // The module refused the request (128).
  ResultModuleRefused128 = 128;
  // What was read back differs from what was written.
  ResultReadsBackDifferent = 201;
  // Only replies to other requests came.
  ResultNoMatchingReply = 251;
  // No reply, or one of a wrong length.
  ResultNoReply = 252;
  // A reply of a wrong length to a write.
  ResultWrongWriteReply = 253;
  // A wrong echo, a bad status or a foreign reply.
  ResultEchoFault = 254;
  // The module refused the request (255).
  ResultModuleRefused255 = 255;

  // The output modes by their numbers, named by the codes that Ctl_Param takes. A stored 4 is RO or DI.
  ModeBI = 1;
  ModePB = 2;
  ModeDI = 3;
  ModeRO = 4;
  ModeT1 = 5;
  ModeT2 = 6;
  ModeT3 = 7;
  ModeT4 = 8;
  ModeUD = 9;
  ModeLC = 10;
  ModeRC = 11;
  ModeRS = 12;
  ModeSS = 13;
  ModeIN = 14;
  ModeTH = 15;
  ModeML = 16;
  ModeLO = 17;
  ModePS = 18;
  ModeAL = 19;
  ModeAU = 20;
  ModeT5 = 21;

type
  // One connection to the controller of the bus.
  _Serial = dispinterface
    ['{9CFAE593-9198-4D82-A6D5-ADC2BBE2EB02}']
    // True: the next serial transaction first sends a line break (10 ms on, 100 ms to settle) and clears this.
    property FlgBreak: WordBool dispid 1;

    // Bus address of the controller, sent in fast-mode frames; echo-mode frames carry none.
    property SerAddress: Byte dispid 2;

    // False: echo mode, the serial interface echoes every byte. True: fast mode, whole frames at once.
    property NoEcho: WordBool dispid 3;

    // True: transactions go over the socket.
    property TCP: WordBool dispid 4;

    // The kind of Ethernet interface, from its greeting: "Q" (with login) or "S".
    property SoortETH: WideString dispid 5;

    // Opens serial port Port (1 to 255) at Baudrate bit/s, 8N1, no handshake, RTS on, and waits 0.5 s for the
    // interface. FastCom selects fast mode, else echo mode; it is taken over, and TCP cleared, even when the port
    // does not open. Returns 0; 56 the port is already open, here or in another program; 100 there is no such port or
    // it cannot be set to the rate. Defaults elsewhere: Port 1; Baudrate 9600; FastCom false.
    function OpenCom(Port: Byte; Baudrate: Smallint; FastCom: WordBool): Byte; dispid 10;

    // Closes the serial port. Returns 0, or 84 when none is open.
    function CloseCom: Byte; dispid 11;

    // Connects to the Ethernet interface at a host name or address, recognises its kind by the greeting, and logs in
    // where it asks for that. Connecting and greeting may take 1.5 s together. PortNumber: TCP port; for ports above
    // 32767 the port minus 65536. PassWord: cut or padded with zero bytes to four; blank or left out: four zero
    // bytes. Comes back as it was used. RSAddress: bus address of the controller, 2 to 99; any other value means 2.
    // Returns 0; 252 no connection or no such greeting; 58 the socket is in use (CloseTCP first); else the
    // interface's answer to the login. TCP is set also after a refused login. Defaults
    // elsewhere: PassWord ''; RSAddress 2.
    function OpenTCP(IpAddress: WideString; PortNumber: Smallint; var PassWord: WideString; RSAddress: Byte): Byte;
        dispid 12;

    // Closes the socket; no setting changes. Returns 0.
    function CloseTCP: Byte; dispid 13;

    // One request to the Ethernet interface and its reply, in the frames of the kind in SoortETH. AtlPogingen: sent
    // to kind "Q"; here 0 means a wait of 2 s, any other value one until data come, the connection ends or midnight
    // passes. Functie: 255 a controller frame, 240 the login; 241, which is answered by one byte, and others as the
    // interface takes them. Returns what the reply carries, or one byte: 252 no reply, 254 a foreign header or
    // length, 58 not connected, 100 a reply too short for its fields.
    function TranceivTcp(Protocol: Smallint; ID: Smallint; AtlPogingen: Byte; Functie: Byte; Data: WideString):
        WideString; dispid 14;

    // One request to the controller over the open link, tried up to AtlPogingen times (0: three times). AtlBytes:
    // command byte: bits 0 to 3 byte count minus 1, bit 4 short reply, bit 5 direction "V", bit 6 write, bit 7 a byte
    // count of 128 or more. Instructie: 2 memory access; 0 a short request whose good reply is one byte 0. Fast mode
    // only. Returns status byte and data, or one byte: 254 echo fault or bad status, 253 wrong reply length to a
    // write (echo mode), 252 no reply or a wrong length, 251 only foreign replies. Raises 8018 when the port is not
    // open. Defaults elsewhere: AtlPogingen 0; Instructie 2.
    function TranCeiv(AtlBytes: Byte; DPHxram: Byte; DPLxram: Byte; Data: WideString; AtlPogingen: Byte;
        Instructie: Byte): WideString; dispid 15;

    // Reads AtlBytes bytes (1 to 16, 0 means 16; 144 means 16 from the high bank) at page DPHxram, offset DPLxram.
    // Richting "V" selects the external memory, any other text the block area. Returns what TranCeiv does. Defaults
    // elsewhere: AtlPogingen 0.
    function ReadCom(AtlBytes: Byte; DPHxram: Byte; DPLxram: Byte; Richting: WideString; AtlPogingen: Byte):
        WideString; dispid 16;

    // Writes Data there. Its length is not checked against AtlBytes. Returns the status, in fast mode over the serial
    // line followed by "#". Defaults elsewhere: AtlPogingen 0.
    function WriteCom(AtlBytes: Byte; DPHxram: Byte; DPLxram: Byte; Richting: WideString; Data: WideString;
        AtlPogingen: Byte): WideString; dispid 17;

    // The result byte for a platform error number: 8005 gives 56, 8012 gives 84, 8018 gives 55, 40006 and 40020 give
    // 58, any other 100.
    function ConvertErr(ErrorNr: OleVariant): Byte; dispid 20;

    // Packed BCD of a number from 0 to 159; run-time error 6 above.
    function DECtoBCD(Getal: Byte): Byte; dispid 21;

    // Whether bit Bitnr of Bytte is 1; false for bits 8 to 29, run-time error 6 above.
    function IfSetBit(Bytte: Byte; Bitnr: Byte): WordBool; dispid 22;

    // The number with leading zeros, in exactly Lengte characters: its last ones where it has more. The sign of a
    // negative number is lost.
    function LdZr(Getal: OleVariant; Lengte: Byte): OleVariant; dispid 23;

    // The number of the lowest bit that is 1 among the low four; 0 when none is.
    function LowNibbleBit(Waarde: Byte): Byte; dispid 24;

    // The smaller of two bytes.
    function Minimum(Getal1: Byte; Getal2: Byte): OleVariant; dispid 25;

    // The number (0 to 7) of the lowest bit that is 1; empty when none is.
    function WhatBit(Bytte: Byte): OleVariant; dispid 26;

    // The number (1 to 21) of a two-letter output mode; 0 when the text is not found. Any part of the list of codes
    // is found and gives the nearest number.
    function ModeToNr(ModeStr: WideString): Byte; dispid 30;

    // The two-letter code of a mode number, empty outside 1 to 21. For number 4 the byte at 0x10FF minus Address is
    // read to tell "RO" from "DI"; run-time error 5 when the reply is empty.
    function ModeToStr(Mode: Byte; Address: Byte): WideString; dispid 31;

    // Reads or writes the mode and the parameter items of output Address (1 to 99), which lie in the page with the
    // output's number: the mode at offset 1, the items by mode (docs/outputs.md). ReadOrWrite: "R" reads; "W", "RW"
    // and "" write. Mode: two-letter mode; on reading set to the one stored. Parameters: the items, one character
    // each. Aantal: number of items, 255 for all from Offset on, 0 for the mode only; on reading set to the number
    // meant. Offset: number of the first item. Returns 0; 99 part of a mode's code with items; 101 bad ReadOrWrite;
    // 102 Aantal, 103 Offset too large; 104 wrong length, 105 wrong value in Parameters; 111 bad mode, on reading:
    // the number stored is none of 1 to 21, as in an output that is not in use (Mode is then empty); 112 bad Address;
    // else the status of the failed transaction. Defaults elsewhere: Parameters ''; Aantal 255; Offset 0.
    function Ctl_Param(ReadOrWrite: WideString; Address: Byte; var Mode: WideString; var Parameters: WideString;
        var Aantal: Smallint; Offset: Byte): Byte; dispid 32;

    // Stores infrared text Offset (0 to 63), cut or padded with blanks to 16 characters, in the high bank of the
    // block area: sixteen texts to a page, from page 10 on. Texts cannot be read: "R" returns 99. Returns 0; 99; 101
    // bad ReadOrWrite; 103 Offset above 63; else the status of the transaction.
    function Ctl_IRText(ReadOrWrite: WideString; Offset: Byte; Tekst: WideString): Byte; dispid 33;

    // Reads or writes the positions Offset + 1 to Offset + Aantal of the initialisation block: 1 to 3 settings
    // (0x0004 to 0x0006), 4 and 5 controller bytes and 6 the kind derived from them (read only), 7 to 13 the clock as
    // year, month, day, weekday, hours, minutes, seconds (0xFFFF down to 0xFFF9, BCD there and plain here; the
    // weekday is 1 for Monday to 7 for Sunday, and 0 is taken too), 14 to 16 further bytes (0x0208 to 0x020A, read
    // only). A write ends before the clock or covers positions 8 to 13; the clock then takes the last seven
    // characters. A read that reaches position 13 appends the three further bytes. What was read before a failure
    // stays in Parameters. With an Aantal of 0 a write transfers nothing; a read gives an empty text below Offset 6,
    // nothing at 6 and the three further bytes at 13, but between them asks for what the link takes a count of 0 for:
    // 16 bytes. ReadOrWrite: "R" reads; "W", "RW" and "" write. Parameters: the bytes; on reading replaced by those
    // read. Returns 0; 99 nothing transferred; 101 bad ReadOrWrite; 102 Offset + Aantal above 16; 103 Offset above
    // 13; 104 wrong length, or a part of the clock; 105 a byte out of its range; else the status of the failed
    // transaction. A failure in the middle of setting the clock can leave it held. Defaults
    // elsewhere: Aantal 13; Offset 0.
    function Ctl_Init(ReadOrWrite: WideString; var Parameters: WideString; Aantal: Byte; Offset: Byte): Byte; dispid
        40;

    // Reads or writes the link of a source to a destination: two bytes at page SourceAdr, offset 31 + 2 times
    // SourceSubAdr, and its flank bits in the byte at offset 254. SourceAdr: 0 to 124, but for 1, 2 and 100.
    // SourceSubAdr: 0 to 3. DestAdr: output 1 to 127, group 129 to 255, or input; 0 removes an output link. On
    // reading set. INofOut: "O" output or group, "I" input; on reading set. An input link reads back as address 0.
    // Parameters1: on reading set to the high nibble of the second byte. Parameters2: on reading set to its low
    // nibble. HighFlank: act on rising edges; output links only; on reading set. LowFlank: act on falling edges,
    // likewise. Returns 0; 101 bad ReadOrWrite; 112 bad SourceAdr, or a link to itself; 115 bad SourceSubAdr; 116 bad
    // INofOut; 100 a value that does not fit a byte; else the status of the failed transaction. Defaults
    // elsewhere: Parameters2 0; HighFlank true; LowFlank true.
    function Ctl_Soft(ReadOrWrite: WideString; SourceAdr: Byte; SourceSubAdr: Byte; var DestAdr: Byte;
        var INofOut: WideString; var Parameters1: Byte; var Parameters2: Byte; var HighFlank: WordBool;
        var LowFlank: WordBool): Byte; dispid 41;

    // Writes all 29 display texts of a language (16 bytes at offset 40 of the pages 6 to 34), then reads them back.
    // Taal: "N" Dutch, "E" English, "F" French, "D" German, "B" or "P" Portuguese, "S" Spanish. Returns 0; 105 no
    // such language; 201 a text reads back differently; else the status of the failed transaction. What was written
    // before a failure stays.
    function Ctl_Lang(Taal: WideString): OleVariant; dispid 42;

    // Reads or writes preset PresetNr (1 to 92): its text (16 bytes at offset 40 of page PresetNr + 34), the
    // four-byte records 3 to MaxAdr (block area at DPHPreset, DPLPreset), two delays and the simulation flag (page
    // 102 + (PresetNr - 1) / 4). ReadOrWrite: "R" reads, anything else writes. Tekst: exactly 16 characters. MaxAdr:
    // number of the last record, 3 to 99. Data: the records, 4 bytes each; on writing one that contains a byte 1 is
    // left as it is. Delay1: 5 to 200, so a write has to give it. Delay2: 0 for none or 5 to 200; both together at
    // most 255. Simulation: on reading 255 or 0; on writing anything but 0 sets the flag. Returns 0; 104 wrong
    // length; 105 bad delay; 112 bad MaxAdr; 113 bad PresetNr; else the status of the failed transaction. Defaults
    // elsewhere: Delay1 0; Delay2 0; Simulation 0.
    function Preset(ReadOrWrite: WideString; PresetNr: Byte; var Tekst: WideString; MaxAdr: Byte;
        var Data: WideString; var Delay1: Byte; var Delay2: Byte; var Simulation: Byte): Byte; dispid 50;

    // High address byte of the records of a preset.
    function DPHPreset(PresetNr: Byte): Byte; dispid 51;

    // Low address byte of record adres of a preset; 0 for preset 0 and above 92; run-time error 6 above 255.
    function DPLPreset(PresetNr: Byte; adres: Byte): Byte; dispid 52;

    // Reads or writes the recorded events of a weekday (0 Monday to 6 Sunday) and hour (0 to 23): five-byte records
    // closed by 255, in the high bank of the block area, page Weekday * 36 + the hour in BCD. ReadOrWrite: "R" reads,
    // anything else writes. Data: the records. On a write their first two bytes are turned into BCD and the end mark
    // is appended in the caller's own text. Returns 0; 105 bad weekday or hour; 100 a value without BCD; else the
    // status of the failed transaction.
    function Simulation(ReadOrWrite: WideString; Weekday: Byte; Uur: Byte; var Data: WideString): Byte; dispid 53;

    // Reads or writes switch-time block BlokNummer (0 to 127), page BlokNummer + 128, from offset 200 on.
    // ReadOrWrite: "R" reads, anything else writes. Dagen: day selection, bit 0 Monday to bit 6 Sunday. Uur: hour,
    // taken modulo 24. Minuten: minute, modulo 60. All three 0 clear the block. Data: two bytes (101 to 124, 1 to 4),
    // or entries of three bytes whose first is 3 or more; empty for a block without action, whose day selection is
    // lost. Returns 0; 104 wrong length; 105 a value out of its range; 100 a block or place that does not exist, or a
    // stored time that is not BCD; else the status of the failed transaction.
    function SwitchTime(ReadOrWrite: WideString; BlokNummer: Byte; var Dagen: Byte; var Uur: Byte; var Minuten: Byte;
        var Data: WideString): Byte; dispid 54;

    // The module type of a six-digit serial number: 4, 5 or 7 for the prefixes that share a type, the prefix itself
    // for some, the prefix modulo 8 for the rest. Any text gives a number.
    function ModuleType(SerieNr: WideString): Smallint; dispid 60;

    // Reads or writes the configuration record of module SerieNr (six digits) through the mailbox at 0x0000, in
    // pieces of at most 16 bytes. Lengths and checks by module type: docs/modules.md. ReadOrWrite: "R" reads,
    // anything else writes. Data: the record. A read that is refused before it gets to the record (an identification
    // that fails, 106) leaves the former value; one that fails later leaves what it has read so far. Offset: number
    // of the first piece; grows by 1 for a known model and by 1 for each piece. ModType: model name; a known one on
    // entry is kept, whatever the module reports. CPUtype: CPU type. FWVersie: firmware version, four digits; "1.0"
    // with 090250 to 090270. Returns 0; 99 an error before any other code, or no piece answered; 100 no or a strange
    // reply; 103 Offset too large, 104 wrong length, 105, 111, 112 a value in Data out of range; 106 SerieNr is not
    // six characters; 107 the controller did not take the request; 127, 128, 255 the module's own code; else the
    // status of the failed transaction. A run-time error behind the first piece (an unplugged adapter) ends with the
    // code of the piece before it, which is 0: Offset tells how far it went. Defaults
    // elsewhere: Offset 0; ModType ''; CPUtype 0; FWVersie ''.
    function Module(ReadOrWrite: WideString; SerieNr: WideString; var Data: WideString; var Offset: Byte;
        var ModType: WideString; var CPUtype: Byte; var FWVersie: WideString): Byte; dispid 61;

    // Reads model name, CPU type and firmware version of a module, for Module to hand on, and finds out whether its
    // model is known. Returns 0, also for modules that have none; 100 no reply; 107 the controller did not take the
    // request; 127, 128, 255 the module's own code; else the status of the failed transaction.
    function RXModuleVersie(SerieNr: WideString): Byte; dispid 62;

    // A record with its channel masks turned into the numbers 1 to 4, as Module does after reading.
    function ConvertRXData(SerieNr: WideString; Data: WideString): WideString; dispid 63;

    // A record with its numbers 0 to 4 turned into channel masks, as Module does before writing. Run-time error 6 for
    // a larger number, 5 for data too short.
    function ConvertTXData(SerieNr: WideString; Data: WideString): WideString; dispid 64;

    // One mask turned into a number, at Positie (from 1). Run-time error 5 for a position outside the data.
    function ConvertRXSub(Data: WideString; Positie: Byte): OleVariant; dispid 65;

    // One number turned into a mask, at Positie (from 1). Run-time errors as ConvertTXData.
    function ConvertTXSub(Data: WideString; Positie: Byte): OleVariant; dispid 66;

    // Turns the first two bytes of each five-byte record from BCD into numbers, in Data itself, and returns it.
    // Run-time error 13 for a byte that is not BCD.
    function ConvertSim(var Data: WideString): WideString; dispid 67;

    // Reads or writes sample SampleNr (0 to 239) in bank BankAofB (0 or 1) of a module, through the long-record
    // buffer. Numbers up to 253 are let through; as no request can name them, they end with 99, behind the blocks of
    // a write. Data: up to 128 bytes; empty after a failed read. Returns 0; 99 an error before any other code; 102,
    // 104 bad SampleNr or length; 106 SerieNr is not six characters; else the status of a transaction, the trigger or
    // the module's reply code.
    function Sample(ReadOrWrite: WideString; SerieNr: WideString; SampleNr: Byte; BankAofB: Byte;
        var Data: WideString): Byte; dispid 68;

    // Reads (64 bytes) or writes text record Offset of a GSM module, through the long-record buffer. Data: the text.
    // Keeps its former value when none was read, also with the result 0 that a trigger gives which reads 0 behind a
    // bad status or comes without its byte: docs/modules.md. Returns 0; 99 an error; 100 no or a strange reply; 127,
    // 128, 255 the module's own code; else the status of a transaction or the trigger.
    function GSMtext(ReadOrWrite: WideString; SerieNr: WideString; Offset: Byte; var Data: WideString): Byte; dispid
        69;
  end;

  CoSerial = class
    // The component, as it is registered.
    class function Create: _Serial;
  end;

implementation

class function CoSerial.Create: _Serial;
begin
  Result := CreateComObject(CLASS_Serial) as _Serial;
end;

end.
