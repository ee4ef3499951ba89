using VelkCom;

static class EarlyBound {
    static void Main(string[] words) => Session.Run(words, Talk);

    static void Talk(Session session) {
        Serial serial = new Serial(), other = new Serial();
        string password = "pass", mode = "", items = "", kind = "O", text = "Evening at home ", data = Session.High;
        short count = 255;
        byte target = 7, first = 3, second = 10, delay1 = 200, delay2 = 0, flag = 1;
        bool rises = false, falls = false;
        serial.SerAddress = 255;
        session.Line("SerAddress", serial.SerAddress);
        session.Line("OpenTCP", serial.OpenTCP("127.0.0.1", session.Port, ref password), password);
        session.Together.SignalAndWait();
        session.Line("once more", other.OpenTCP("127.0.0.1", session.Port));
        session.Line("link", serial.TCP, serial.SoortETH == session.Kind);
        session.Line("Ctl_Param R", serial.Ctl_Param("R", 5, ref mode, ref items, ref count), mode, items, count);
        session.Line("  the mode", serial.Ctl_Param("R", 5, ref mode), mode);
        session.Line("  from 9 on", serial.Ctl_Param("R", 5, ref mode, ref items, Offset: 9), items);
        session.Line("Ctl_Soft W", serial.Ctl_Soft("W", session.Own, 2, ref target, ref kind, ref first, ref second,
            ref rises));
        target = first = second = 0;
        kind = "";
        rises = true;
        session.Line("Ctl_Soft R", serial.Ctl_Soft("R", session.Own, 2, ref target, ref kind, ref first, ref second,
            ref rises, ref falls), target, kind, first, second, rises, falls);
        session.Line("Preset W", serial.Preset("W", session.Own, ref text, 34, ref data, ref delay1,
            Simulation: ref flag));
        text = data = "";
        delay1 = flag = 0;
        session.Line("Preset R", serial.Preset("R", session.Own, ref text, 34, ref data, ref delay1, ref delay2,
            ref flag), text, data, delay1, delay2, flag);
        session.Line("ReadCom", serial.ReadCom(1, 5, 1, "V"));
        session.Line("values", serial.IfSetBit(64, 6), serial.LdZr(7, 3), serial.WhatBit(0), serial.DECtoBCD(159));
        session.Fails("DECtoBCD", () => serial.DECtoBCD(160));
        data = "\x0012\x0059xyz\x001A\x0001xyz";
        session.Fails("ConvertSim", () => serial.ConvertSim(ref data));
        session.Line("  what it converted", data); // .NET gives nothing back beside an error
        session.Fails("SoortETH", () => serial.SoortETH = "\u4E2D");
        session.Line("CloseTCP", serial.CloseTCP());
        serial.TCP = false;
        session.Fails("ReadCom", () => serial.ReadCom(1, 5, 1, "V"));
    }
}
