Imports Microsoft.VisualBasic
Imports VelkCom

Module EarlyBound
    Sub Main(words As String())
        Session.Run(words, AddressOf Talk)
    End Sub

    Sub Talk(session As Session)
        Dim serial = CType(New SerialClass, Serial), other = CType(New SerialClass, Serial)
        Dim password = "pass", mode = "", items = "", kind = "O", text = "Evening at home ", data = Session.High
        Dim count As Short = 255
        Dim target As Byte = 7, first As Byte = 3, second As Byte = 10, delay1 As Byte = 200
        Dim delay2 As Byte, flag As Byte
        Dim rises = True, falls = False
        serial.SerAddress = 255
        session.Line("SerAddress", serial.SerAddress)
        session.Line("OpenTCP", serial.OpenTCP("127.0.0.1", session.Port, password), password)
        session.Together.SignalAndWait()
        session.Line("once more", other.OpenTCP("127.0.0.1", session.Port))
        session.Line("link", serial.TCP, serial.SoortETH = session.Kind)
        session.Line("Ctl_Param R", serial.Ctl_Param("R", 5, mode, items, count), mode, items, count)
        session.Line("  the mode", serial.Ctl_Param("R", 5, mode), mode)
        session.Line("  from 9 on", serial.Ctl_Param("R", 5, mode, items, , 9), items)
        session.Line("Ctl_Soft W", serial.Ctl_Soft("W", session.Own, 2, 7, "O", 3, 10, False))
        target = 0 : kind = "" : first = 0 : second = 0
        session.Line("Ctl_Soft R", serial.Ctl_Soft("R", session.Own, 2, target, kind, first, second, rises, falls),
                     target, kind, first, second, rises, falls)
        session.Line("Preset W", serial.Preset("W", session.Own, text, 34, data, delay1, , 1))
        text = "" : data = "" : delay1 = 0
        session.Line("Preset R", serial.Preset("R", session.Own, text, 34, data, delay1, delay2, flag),
                     text, data, delay1, delay2, flag)
        session.Line("ReadCom", serial.ReadCom(1, 5, 1, "V"))
        session.Line("values", serial.IfSetBit(64, 6), serial.LdZr(7, 3), serial.WhatBit(0), serial.DECtoBCD(159))
        session.Fails("DECtoBCD", Function() serial.DECtoBCD(160))
        data = ChrW(&H12) & ChrW(&H59) & "xyz" & ChrW(&H1A) & ChrW(1) & "xyz"
        session.Fails("ConvertSim", Function() serial.ConvertSim(data))
        session.Line("  what it converted", data)
        session.Fails("SoortETH", Function() SetKind(serial, ChrW(&H4E2D)))
        session.Line("CloseTCP", serial.CloseTCP())
        serial.TCP = False
        session.Fails("ReadCom", Function() serial.ReadCom(1, 5, 1, "V"))
    End Sub

    Function SetKind(serial As Serial, kind As String) As Object
        serial.SoortETH = kind
        Return kind
    End Function
End Module
