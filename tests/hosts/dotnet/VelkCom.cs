// The members that the hosts here use, as early-bound programs declare them.
#pragma warning disable 618 // .NET Core 3.1 announced that late dispatch would go, and later versions kept it
using System.Runtime.InteropServices;

namespace VelkCom
{
    [ComImport, Guid("9CFAE593-9198-4D82-A6D5-ADC2BBE2EB02"), InterfaceType(ComInterfaceType.InterfaceIsIDispatch)]
    public interface _Serial
    {
        [DispId(2)] byte SerAddress { get; set; }
        [DispId(4)] bool TCP { get; set; }
        [DispId(5)] string SoortETH { get; set; }
        [DispId(12)] byte OpenTCP(string IpAddress, short PortNumber,
            [In, Out, Optional, DefaultParameterValue("")] ref string PassWord,
            [Optional, DefaultParameterValue((byte)2)] byte RSAddress);
        [DispId(13)] byte CloseTCP();
        [DispId(16)] string ReadCom(byte AtlBytes, byte DPHxram, byte DPLxram, string Richting,
            [Optional, DefaultParameterValue((byte)0)] byte AtlPogingen);
        [DispId(21)] byte DECtoBCD(byte Getal);
        [DispId(22)] bool IfSetBit(byte Bytte, byte Bitnr);
        [DispId(23)] object LdZr(object Getal, byte Lengte);
        [DispId(26)] object WhatBit(byte Bytte);
        [DispId(32)] byte Ctl_Param(string ReadOrWrite, byte Address, [In, Out] ref string Mode,
            [In, Out, Optional, DefaultParameterValue("")] ref string Parameters,
            [In, Out, Optional, DefaultParameterValue((short)255)] ref short Aantal,
            [Optional, DefaultParameterValue((byte)0)] byte Offset);
        [DispId(41)] byte Ctl_Soft(string ReadOrWrite, byte SourceAdr, byte SourceSubAdr, [In, Out] ref byte DestAdr,
            [In, Out] ref string INofOut, [In, Out] ref byte Parameters1,
            [In, Out, Optional, DefaultParameterValue((byte)0)] ref byte Parameters2,
            [In, Out, Optional, DefaultParameterValue(true)] ref bool HighFlank,
            [In, Out, Optional, DefaultParameterValue(true)] ref bool LowFlank);
        [DispId(50)] byte Preset(string ReadOrWrite, byte PresetNr, [In, Out] ref string Tekst, byte MaxAdr,
            [In, Out] ref string Data, [In, Out, Optional, DefaultParameterValue((byte)0)] ref byte Delay1,
            [In, Out, Optional, DefaultParameterValue((byte)0)] ref byte Delay2,
            [In, Out, Optional, DefaultParameterValue((byte)0)] ref byte Simulation);
        [DispId(67)] string ConvertSim([In, Out] ref string Data);
    }

    [ComImport, Guid("9CFAE593-9198-4D82-A6D5-ADC2BBE2EB02"), CoClass(typeof(SerialClass))]
    public interface Serial : _Serial
    {
    }

    [ComImport, Guid("DD354E3B-3B0A-4871-81E2-879F41FB2B63")]
    public class SerialClass
    {
    }
}
