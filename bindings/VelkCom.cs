// Printed from VelkCom's method table and its comments; see CONTRIBUTING.md.
// VelkCom: configuration of home-automation bus controllers.
//
// Early-bound declarations for C# and other .NET languages. Compile this file with yours, or into a library of its
// own for Visual Basic:
//
//     var serial = new VelkCom.Serial();
//     byte result = serial.OpenCom(3);
//     if (result != 0) Console.WriteLine((VelkCom.Result)result);
//
// A string carries bytes: one character each, 0 to 255. Methods that raise a run-time error throw an exception whose
// HResult is 0x800A0000 plus the error's number; on .NET Core up to 3.1 it is the InnerException of the one caught.
#pragma warning disable 618, 1573, 1591 // dispatch interfaces are meant; names say the rest
using System.Runtime.InteropServices;

namespace VelkCom
{
    /// <summary>What a result byte says. Any other is a status that the controller gave.</summary>
    public enum Result : byte
    {
        /// <summary>Done.</summary>
        Success = 0,
        /// <summary>The serial port is not open.</summary>
        PortNotOpen = 55,
        /// <summary>The serial port is already open.</summary>
        PortAlreadyOpen = 56,
        /// <summary>The TCP link is not connected, or still in use.</summary>
        NotConnected = 58,
        /// <summary>There is no open serial port to close.</summary>
        NothingToClose = 84,
        /// <summary>Nothing was done.</summary>
        NothingDone = 99,
        /// <summary>No reply or an unexpected one, or a failure without a code of its own.</summary>
        OtherFailure = 100,
        /// <summary>ReadOrWrite is neither R nor W.</summary>
        BadSelector = 101,
        /// <summary>A count or a number is too large.</summary>
        CountTooLarge = 102,
        /// <summary>Offset is out of range.</summary>
        BadOffset = 103,
        /// <summary>The data have a wrong length, or the number is not for this module.</summary>
        WrongLength = 104,
        /// <summary>A value is out of range.</summary>
        BadValue = 105,
        /// <summary>SerieNr does not have six characters.</summary>
        BadSerialNumber = 106,
        /// <summary>The controller did not take the module request.</summary>
        ControllerBusy = 107,
        /// <summary>A mode is unknown or not allowed here.</summary>
        BadMode = 111,
        /// <summary>An address or a field is out of range.</summary>
        BadAddress = 112,
        /// <summary>The preset number is out of range.</summary>
        BadPreset = 113,
        /// <summary>SourceSubAdr is out of range.</summary>
        BadSubAddress = 115,
        /// <summary>INofOut is neither I nor O.</summary>
        BadLinkKind = 116,
        /// <summary>The module refused the request (127).</summary>
        ModuleRefused127 = 127,
        /// <summary>The module refused the request (128).</summary>
        ModuleRefused128 = 128,
        /// <summary>What was read back differs from what was written.</summary>
        ReadsBackDifferent = 201,
        /// <summary>Only replies to other requests came.</summary>
        NoMatchingReply = 251,
        /// <summary>No reply, or one of a wrong length.</summary>
        NoReply = 252,
        /// <summary>A reply of a wrong length to a write.</summary>
        WrongWriteReply = 253,
        /// <summary>A wrong echo, a bad status or a foreign reply.</summary>
        EchoFault = 254,
        /// <summary>The module refused the request (255).</summary>
        ModuleRefused255 = 255,
    }

    /// <summary>The output modes by their numbers; the names are the codes that Ctl_Param takes. A stored 4 is RO or
    /// DI.</summary>
    public enum OutputMode : byte
    {
        BI = 1,
        PB = 2,
        DI = 3,
        RO = 4,
        T1 = 5,
        T2 = 6,
        T3 = 7,
        T4 = 8,
        UD = 9,
        LC = 10,
        RC = 11,
        RS = 12,
        SS = 13,
        IN = 14,
        TH = 15,
        ML = 16,
        LO = 17,
        PS = 18,
        AL = 19,
        AU = 20,
        T5 = 21,
    }

    /// <summary>One connection to the controller of the bus.</summary>
    [ComImport, Guid("9CFAE593-9198-4D82-A6D5-ADC2BBE2EB02"), InterfaceType(ComInterfaceType.InterfaceIsIDispatch)]
    public interface _Serial
    {
        /// <summary>True: the next serial transaction first sends a line break (10 ms on, 100 ms to settle) and
        /// clears this.</summary>
        bool FlgBreak { [DispId(1)] get; [DispId(1)] set; }

        /// <summary>Bus address of the controller, sent in fast-mode frames; echo-mode frames carry none.</summary>
        byte SerAddress { [DispId(2)] get; [DispId(2)] set; }

        /// <summary>False: echo mode, the serial interface echoes every byte. True: fast mode, whole frames at
        /// once.</summary>
        bool NoEcho { [DispId(3)] get; [DispId(3)] set; }

        /// <summary>True: transactions go over the socket.</summary>
        bool TCP { [DispId(4)] get; [DispId(4)] set; }

        /// <summary>The kind of Ethernet interface, from its greeting: "Q" (with login) or "S".</summary>
        string SoortETH { [DispId(5)] get; [DispId(5)] set; }

        /// <summary>Opens serial port <c>Port</c> (1 to 255) at <c>Baudrate</c> bit/s, 8N1, no handshake, RTS on, and
        /// waits 0.5 s for the interface. <c>FastCom</c> selects fast mode, else echo mode; it is taken over, and
        /// <c>TCP</c> cleared, even when the port does not open. Returns 0; 56 the port is already open, here or in
        /// another program; 100 there is no such port or it cannot be set to the rate.</summary>
        [DispId(10)]
        byte OpenCom([Optional, DefaultParameterValue((byte)1)] byte Port,
            [Optional, DefaultParameterValue((short)9600)] short Baudrate,
            [Optional, DefaultParameterValue(false)] bool FastCom);

        /// <summary>Closes the serial port. Returns 0, or 84 when none is open.</summary>
        [DispId(11)]
        byte CloseCom();

        /// <summary>Connects to the Ethernet interface at a host name or address, recognises its kind by the
        /// greeting, and logs in where it asks for that. Connecting and greeting may take 1.5 s together.</summary>
        /// <param name="PortNumber">TCP port; for ports above 32767 the port minus 65536.</param>
        /// <param name="PassWord">cut or padded with zero bytes to four; blank or left out: four zero bytes. Comes
        /// back as it was used.</param>
        /// <param name="RSAddress">bus address of the controller, 2 to 99; any other value means 2.</param>
        /// <returns>0; 252 no connection or no such greeting; 58 the socket is in use (<c>CloseTCP</c> first); else
        /// the interface's answer to the login. <c>TCP</c> is set also after a refused login.</returns>
        [DispId(12)]
        byte OpenTCP(string IpAddress, short PortNumber, [Optional, DefaultParameterValue("")] ref string PassWord,
            [Optional, DefaultParameterValue((byte)2)] byte RSAddress);

        /// <summary>Closes the socket; no setting changes. Returns 0.</summary>
        [DispId(13)]
        byte CloseTCP();

        /// <summary>One request to the Ethernet interface and its reply, in the frames of the kind in
        /// <c>SoortETH</c>.</summary>
        /// <param name="AtlPogingen">sent to kind "Q"; here 0 means a wait of 2 s, any other value one until data
        /// come, the connection ends or midnight passes.</param>
        /// <param name="Functie">255 a controller frame, 240 the login; 241, which is answered by one byte, and
        /// others as the interface takes them.</param>
        /// <returns>what the reply carries, or one byte: 252 no reply, 254 a foreign header or length, 58 not
        /// connected, 100 a reply too short for its fields.</returns>
        [DispId(14)]
        string TranceivTcp(short Protocol, short ID, byte AtlPogingen, byte Functie, string Data);

        /// <summary>One request to the controller over the open link, tried up to <c>AtlPogingen</c> times (0: three
        /// times).</summary>
        /// <param name="AtlBytes">command byte: bits 0 to 3 byte count minus 1, bit 4 short reply, bit 5 direction
        /// "V", bit 6 write, bit 7 a byte count of 128 or more.</param>
        /// <param name="Instructie">2 memory access; 0 a short request whose good reply is one byte 0. Fast mode
        /// only.</param>
        /// <returns>status byte and data, or one byte: 254 echo fault or bad status, 253 wrong reply length to a
        /// write (echo mode), 252 no reply or a wrong length, 251 only foreign replies. Raises 8018 when the port is
        /// not open.</returns>
        [DispId(15)]
        string TranCeiv(byte AtlBytes, byte DPHxram, byte DPLxram, string Data,
            [Optional, DefaultParameterValue((byte)0)] byte AtlPogingen,
            [Optional, DefaultParameterValue((byte)2)] byte Instructie);

        /// <summary>Reads <c>AtlBytes</c> bytes (1 to 16, 0 means 16; 144 means 16 from the high bank) at page
        /// <c>DPHxram</c>, offset <c>DPLxram</c>. <c>Richting</c> "V" selects the external memory, any other text the
        /// block area. Returns what <c>TranCeiv</c> does.</summary>
        [DispId(16)]
        string ReadCom(byte AtlBytes, byte DPHxram, byte DPLxram, string Richting,
            [Optional, DefaultParameterValue((byte)0)] byte AtlPogingen);

        /// <summary>Writes <c>Data</c> there. Its length is not checked against <c>AtlBytes</c>. Returns the status,
        /// in fast mode over the serial line followed by "#".</summary>
        [DispId(17)]
        string WriteCom(byte AtlBytes, byte DPHxram, byte DPLxram, string Richting, string Data,
            [Optional, DefaultParameterValue((byte)0)] byte AtlPogingen);

        /// <summary>The result byte for a platform error number: 8005 gives 56, 8012 gives 84, 8018 gives 55, 40006
        /// and 40020 give 58, any other 100.</summary>
        [DispId(20)]
        byte ConvertErr(object ErrorNr);

        /// <summary>Packed BCD of a number from 0 to 159; run-time error 6 above.</summary>
        [DispId(21)]
        byte DECtoBCD(byte Getal);

        /// <summary>Whether bit <c>Bitnr</c> of <c>Bytte</c> is 1; false for bits 8 to 29, run-time error 6
        /// above.</summary>
        [DispId(22)]
        bool IfSetBit(byte Bytte, byte Bitnr);

        /// <summary>The number with leading zeros, in exactly <c>Lengte</c> characters: its last ones where it has
        /// more. The sign of a negative number is lost.</summary>
        [DispId(23)]
        object LdZr(object Getal, byte Lengte);

        /// <summary>The number of the lowest bit that is 1 among the low four; 0 when none is.</summary>
        [DispId(24)]
        byte LowNibbleBit(byte Waarde);

        /// <summary>The smaller of two bytes.</summary>
        [DispId(25)]
        object Minimum(byte Getal1, byte Getal2);

        /// <summary>The number (0 to 7) of the lowest bit that is 1; empty when none is.</summary>
        [DispId(26)]
        object WhatBit(byte Bytte);

        /// <summary>The number (1 to 21) of a two-letter output mode; 0 when the text is not found. Any part of the
        /// list of codes is found and gives the nearest number.</summary>
        [DispId(30)]
        byte ModeToNr(string ModeStr);

        /// <summary>The two-letter code of a mode number, empty outside 1 to 21. For number 4 the byte at 0x10FF
        /// minus <c>Address</c> is read to tell "RO" from "DI"; run-time error 5 when the reply is empty.</summary>
        [DispId(31)]
        string ModeToStr(byte Mode, byte Address);

        /// <summary>Reads or writes the mode and the parameter items of output <c>Address</c> (1 to 99), which lie in
        /// the page with the output's number: the mode at offset 1, the items by mode (docs/outputs.md).</summary>
        /// <param name="ReadOrWrite">"R" reads; "W", "RW" and "" write.</param>
        /// <param name="Mode">two-letter mode; on reading set to the one stored.</param>
        /// <param name="Parameters">the items, one character each.</param>
        /// <param name="Aantal">number of items, 255 for all from <c>Offset</c> on, 0 for the mode only; on reading
        /// set to the number meant.</param>
        /// <param name="Offset">number of the first item.</param>
        /// <returns>0; 99 part of a mode's code with items; 101 bad <c>ReadOrWrite</c>; 102 <c>Aantal</c>, 103
        /// <c>Offset</c> too large; 104 wrong length, 105 wrong value in <c>Parameters</c>; 111 bad mode, on reading:
        /// the number stored is none of 1 to 21, as in an output that is not in use (<c>Mode</c> is then empty); 112
        /// bad <c>Address</c>; else the status of the failed transaction.</returns>
        [DispId(32)]
        byte Ctl_Param(string ReadOrWrite, byte Address, ref string Mode,
            [Optional, DefaultParameterValue("")] ref string Parameters,
            [Optional, DefaultParameterValue((short)255)] ref short Aantal,
            [Optional, DefaultParameterValue((byte)0)] byte Offset);

        /// <summary>Stores infrared text <c>Offset</c> (0 to 63), cut or padded with blanks to 16 characters, in the
        /// high bank of the block area: sixteen texts to a page, from page 10 on. Texts cannot be read: "R" returns
        /// 99.</summary>
        /// <returns>0; 99; 101 bad <c>ReadOrWrite</c>; 103 <c>Offset</c> above 63; else the status of the
        /// transaction.</returns>
        [DispId(33)]
        byte Ctl_IRText(string ReadOrWrite, byte Offset, string Tekst);

        /// <summary>Reads or writes the positions <c>Offset</c> + 1 to <c>Offset</c> + <c>Aantal</c> of the
        /// initialisation block: 1 to 3 settings (0x0004 to 0x0006), 4 and 5 controller bytes and 6 the kind derived
        /// from them (read only), 7 to 13 the clock as year, month, day, weekday, hours, minutes, seconds (0xFFFF
        /// down to 0xFFF9, BCD there and plain here; the weekday is 1 for Monday to 7 for Sunday, and 0 is taken
        /// too), 14 to 16 further bytes (0x0208 to 0x020A, read only). A write ends before the clock or covers
        /// positions 8 to 13; the clock then takes the last seven characters. A read that reaches position 13 appends
        /// the three further bytes. What was read before a failure stays in <c>Parameters</c>. With an <c>Aantal</c>
        /// of 0 a write transfers nothing; a read gives an empty text below <c>Offset</c> 6, nothing at 6 and the
        /// three further bytes at 13, but between them asks for what the link takes a count of 0 for: 16
        /// bytes.</summary>
        /// <param name="ReadOrWrite">"R" reads; "W", "RW" and "" write.</param>
        /// <param name="Parameters">the bytes; on reading replaced by those read.</param>
        /// <returns>0; 99 nothing transferred; 101 bad <c>ReadOrWrite</c>; 102 <c>Offset</c> + <c>Aantal</c> above
        /// 16; 103 <c>Offset</c> above 13; 104 wrong length, or a part of the clock; 105 a byte out of its range;
        /// else the status of the failed transaction. A failure in the middle of setting the clock can leave it
        /// held.</returns>
        [DispId(40)]
        byte Ctl_Init(string ReadOrWrite, ref string Parameters,
            [Optional, DefaultParameterValue((byte)13)] byte Aantal,
            [Optional, DefaultParameterValue((byte)0)] byte Offset);

        /// <summary>Reads or writes the link of a source to a destination: two bytes at page <c>SourceAdr</c>, offset
        /// 31 + 2 times <c>SourceSubAdr</c>, and its flank bits in the byte at offset 254.</summary>
        /// <param name="SourceAdr">0 to 124, but for 1, 2 and 100.</param>
        /// <param name="SourceSubAdr">0 to 3.</param>
        /// <param name="DestAdr">output 1 to 127, group 129 to 255, or input; 0 removes an output link. On reading
        /// set.</param>
        /// <param name="INofOut">"O" output or group, "I" input; on reading set. An input link reads back as address
        /// 0.</param>
        /// <param name="Parameters1">on reading set to the high nibble of the second byte.</param>
        /// <param name="Parameters2">on reading set to its low nibble.</param>
        /// <param name="HighFlank">act on rising edges; output links only; on reading set.</param>
        /// <param name="LowFlank">act on falling edges, likewise.</param>
        /// <returns>0; 101 bad <c>ReadOrWrite</c>; 112 bad <c>SourceAdr</c>, or a link to itself; 115 bad
        /// <c>SourceSubAdr</c>; 116 bad <c>INofOut</c>; 100 a value that does not fit a byte; else the status of the
        /// failed transaction.</returns>
        [DispId(41)]
        byte Ctl_Soft(string ReadOrWrite, byte SourceAdr, byte SourceSubAdr, ref byte DestAdr, ref string INofOut,
            ref byte Parameters1, [Optional, DefaultParameterValue((byte)0)] ref byte Parameters2,
            [Optional, DefaultParameterValue(true)] ref bool HighFlank,
            [Optional, DefaultParameterValue(true)] ref bool LowFlank);

        /// <summary>Writes all 29 display texts of a language (16 bytes at offset 40 of the pages 6 to 34), then
        /// reads them back.</summary>
        /// <param name="Taal">"N" Dutch, "E" English, "F" French, "D" German, "B" or "P" Portuguese, "S"
        /// Spanish.</param>
        /// <returns>0; 105 no such language; 201 a text reads back differently; else the status of the failed
        /// transaction. What was written before a failure stays.</returns>
        [DispId(42)]
        object Ctl_Lang(string Taal);

        /// <summary>Reads or writes preset <c>PresetNr</c> (1 to 92): its text (16 bytes at offset 40 of page
        /// <c>PresetNr</c> + 34), the four-byte records 3 to <c>MaxAdr</c> (block area at <c>DPHPreset</c>,
        /// <c>DPLPreset</c>), two delays and the simulation flag (page 102 + (<c>PresetNr</c> - 1) / 4).</summary>
        /// <param name="ReadOrWrite">"R" reads, anything else writes.</param>
        /// <param name="Tekst">exactly 16 characters.</param>
        /// <param name="MaxAdr">number of the last record, 3 to 99.</param>
        /// <param name="Data">the records, 4 bytes each; on writing one that contains a byte 1 is left as it
        /// is.</param>
        /// <param name="Delay1">5 to 200, so a write has to give it.</param>
        /// <param name="Delay2">0 for none or 5 to 200; both together at most 255.</param>
        /// <param name="Simulation">on reading 255 or 0; on writing anything but 0 sets the flag.</param>
        /// <returns>0; 104 wrong length; 105 bad delay; 112 bad <c>MaxAdr</c>; 113 bad <c>PresetNr</c>; else the
        /// status of the failed transaction.</returns>
        [DispId(50)]
        byte Preset(string ReadOrWrite, byte PresetNr, ref string Tekst, byte MaxAdr, ref string Data,
            [Optional, DefaultParameterValue((byte)0)] ref byte Delay1,
            [Optional, DefaultParameterValue((byte)0)] ref byte Delay2,
            [Optional, DefaultParameterValue((byte)0)] ref byte Simulation);

        /// <summary>High address byte of the records of a preset.</summary>
        [DispId(51)]
        byte DPHPreset(byte PresetNr);

        /// <summary>Low address byte of record <c>adres</c> of a preset; 0 for preset 0 and above 92; run-time error
        /// 6 above 255.</summary>
        [DispId(52)]
        byte DPLPreset(byte PresetNr, byte adres);

        /// <summary>Reads or writes the recorded events of a weekday (0 Monday to 6 Sunday) and hour (0 to 23):
        /// five-byte records closed by 255, in the high bank of the block area, page <c>Weekday</c> * 36 + the hour
        /// in BCD.</summary>
        /// <param name="ReadOrWrite">"R" reads, anything else writes.</param>
        /// <param name="Data">the records. On a write their first two bytes are turned into BCD and the end mark is
        /// appended in the caller's own text.</param>
        /// <returns>0; 105 bad weekday or hour; 100 a value without BCD; else the status of the failed
        /// transaction.</returns>
        [DispId(53)]
        byte Simulation(string ReadOrWrite, byte Weekday, byte Uur, ref string Data);

        /// <summary>Reads or writes switch-time block <c>BlokNummer</c> (0 to 127), page <c>BlokNummer</c> + 128,
        /// from offset 200 on.</summary>
        /// <param name="ReadOrWrite">"R" reads, anything else writes.</param>
        /// <param name="Dagen">day selection, bit 0 Monday to bit 6 Sunday.</param>
        /// <param name="Uur">hour, taken modulo 24.</param>
        /// <param name="Minuten">minute, modulo 60. All three 0 clear the block.</param>
        /// <param name="Data">two bytes (101 to 124, 1 to 4), or entries of three bytes whose first is 3 or more;
        /// empty for a block without action, whose day selection is lost.</param>
        /// <returns>0; 104 wrong length; 105 a value out of its range; 100 a block or place that does not exist, or a
        /// stored time that is not BCD; else the status of the failed transaction.</returns>
        [DispId(54)]
        byte SwitchTime(string ReadOrWrite, byte BlokNummer, ref byte Dagen, ref byte Uur, ref byte Minuten,
            ref string Data);

        /// <summary>The module type of a six-digit serial number: 4, 5 or 7 for the prefixes that share a type, the
        /// prefix itself for some, the prefix modulo 8 for the rest. Any text gives a number.</summary>
        [DispId(60)]
        short ModuleType(string SerieNr);

        /// <summary>Reads or writes the configuration record of module <c>SerieNr</c> (six digits) through the
        /// mailbox at 0x0000, in pieces of at most 16 bytes. Lengths and checks by module type:
        /// docs/modules.md.</summary>
        /// <param name="ReadOrWrite">"R" reads, anything else writes.</param>
        /// <param name="Data">the record. A read that is refused before it gets to the record (an identification that
        /// fails, 106) leaves the former value; one that fails later leaves what it has read so far.</param>
        /// <param name="Offset">number of the first piece; grows by 1 for a known model and by 1 for each
        /// piece.</param>
        /// <param name="ModType">model name; a known one on entry is kept, whatever the module reports.</param>
        /// <param name="CPUtype">CPU type.</param>
        /// <param name="FWVersie">firmware version, four digits; "1.0" with 090250 to 090270.</param>
        /// <returns>0; 99 an error before any other code, or no piece answered; 100 no or a strange reply; 103
        /// <c>Offset</c> too large, 104 wrong length, 105, 111, 112 a value in <c>Data</c> out of range; 106
        /// <c>SerieNr</c> is not six characters; 107 the controller did not take the request; 127, 128, 255 the
        /// module's own code; else the status of the failed transaction. A run-time error behind the first piece (an
        /// unplugged adapter) ends with the code of the piece before it, which is 0: <c>Offset</c> tells how far it
        /// went.</returns>
        [DispId(61)]
        byte Module(string ReadOrWrite, string SerieNr, ref string Data,
            [Optional, DefaultParameterValue((byte)0)] ref byte Offset,
            [Optional, DefaultParameterValue("")] ref string ModType,
            [Optional, DefaultParameterValue((byte)0)] ref byte CPUtype,
            [Optional, DefaultParameterValue("")] ref string FWVersie);

        /// <summary>Reads model name, CPU type and firmware version of a module, for <c>Module</c> to hand on, and
        /// finds out whether its model is known.</summary>
        /// <returns>0, also for modules that have none; 100 no reply; 107 the controller did not take the request;
        /// 127, 128, 255 the module's own code; else the status of the failed transaction.</returns>
        [DispId(62)]
        byte RXModuleVersie(string SerieNr);

        /// <summary>A record with its channel masks turned into the numbers 1 to 4, as <c>Module</c> does after
        /// reading.</summary>
        [DispId(63)]
        string ConvertRXData(string SerieNr, string Data);

        /// <summary>A record with its numbers 0 to 4 turned into channel masks, as <c>Module</c> does before writing.
        /// Run-time error 6 for a larger number, 5 for data too short.</summary>
        [DispId(64)]
        string ConvertTXData(string SerieNr, string Data);

        /// <summary>One mask turned into a number, at <c>Positie</c> (from 1). Run-time error 5 for a position
        /// outside the data.</summary>
        [DispId(65)]
        object ConvertRXSub(string Data, byte Positie);

        /// <summary>One number turned into a mask, at <c>Positie</c> (from 1). Run-time errors as
        /// <c>ConvertTXData</c>.</summary>
        [DispId(66)]
        object ConvertTXSub(string Data, byte Positie);

        /// <summary>Turns the first two bytes of each five-byte record from BCD into numbers, in <c>Data</c> itself,
        /// and returns it. Run-time error 13 for a byte that is not BCD.</summary>
        [DispId(67)]
        string ConvertSim(ref string Data);

        /// <summary>Reads or writes sample <c>SampleNr</c> (0 to 239) in bank <c>BankAofB</c> (0 or 1) of a module,
        /// through the long-record buffer. Numbers up to 253 are let through; as no request can name them, they end
        /// with 99, behind the blocks of a write.</summary>
        /// <param name="Data">up to 128 bytes; empty after a failed read.</param>
        /// <returns>0; 99 an error before any other code; 102, 104 bad <c>SampleNr</c> or length; 106 <c>SerieNr</c>
        /// is not six characters; else the status of a transaction, the trigger or the module's reply code.</returns>
        [DispId(68)]
        byte Sample(string ReadOrWrite, string SerieNr, byte SampleNr, byte BankAofB, ref string Data);

        /// <summary>Reads (64 bytes) or writes text record <c>Offset</c> of a GSM module, through the long-record
        /// buffer.</summary>
        /// <param name="Data">the text. Keeps its former value when none was read, also with the result 0 that a
        /// trigger gives which reads 0 behind a bad status or comes without its byte: docs/modules.md.</param>
        /// <returns>0; 99 an error; 100 no or a strange reply; 127, 128, 255 the module's own code; else the status
        /// of a transaction or the trigger.</returns>
        [DispId(69)]
        byte GSMtext(string ReadOrWrite, string SerieNr, byte Offset, ref string Data);
    }

    /// <summary>What "new Serial()" makes: the component, as it is registered.</summary>
    [ComImport, Guid("9CFAE593-9198-4D82-A6D5-ADC2BBE2EB02"), CoClass(typeof(SerialClass))]
    public interface Serial : _Serial
    {
    }

    [ComImport, Guid("DD354E3B-3B0A-4871-81E2-879F41FB2B63"), ClassInterface(ClassInterfaceType.None)]
    public class SerialClass
    {
    }
}
