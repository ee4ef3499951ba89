' Goes through the link, every configuration method and every timed function over one link.

Dim data
Check "open", OpenLink(), 0
Check "open twice", OpenLink() > 0, True
Check "the link in use", serial.TCP, link(0) = "tcp"
If link(0) = "tcp" Then Check "kind", serial.SoortETH, link(3)
data = Chr(1) & Chr(0) & Chr(255) & "*#"
Check "write bytes", Asc(serial.WriteCom(5, 5, 200, "V", data)), 0
Check "read them", serial.ReadCom(5, 5, 200, "V"), Chr(0) & data

' Output parameters: all items, one item, and one variable for several results.
Dim mode, items, count, again
count = 255
Check "Ctl_Param R", serial.Ctl_Param("R", 5, mode, items, count), 0
Check "  its parts", mode & count & "," & Len(items), "T112,12"
Check "Ctl_Param R", serial.Ctl_Param("R", 6, mode, items), 0
Check "Ctl_Param W", serial.Ctl_Param("W", 60, mode, items), 0
Check "Ctl_Param W", serial.Ctl_Param("W", 60, mode, Chr(200), 1, 4), 0
Check "Ctl_Param R", serial.Ctl_Param("R", 60, mode, again, 1, 4), 0
Check "  it is there", Hexed(again), "C8"
Last "Ctl_Param R", serial.Ctl_Param("R", 5, x, x, x), "Integer 0"
Last "Ctl_Param R", serial.Ctl_Param("R", 5, mode, x, x), "Integer 0"
x = 255
Last "Ctl_Param R", serial.Ctl_Param("R", 5, x, x, x), "Integer 12"
x = "255"
Last "Ctl_Param R", serial.Ctl_Param("R", 5, x, x, x), "String 12"
x = 255
Last "Ctl_Param R", serial.Ctl_Param("R", 5, x), "String T1"
x = "T1"
Last "Ctl_Param R", serial.Ctl_Param("R", 6, x, x), "String " & items
Check "Ctl_Param of no output", serial.Ctl_Param("R", 0, x, x, x), 112
CheckType "  the last result", x, "Integer 0"
x = Empty

' The initialisation block and the clock.
Dim block
block = Chr(50) & Chr(110) & Chr(7) & Chr(0) & Chr(0) & Chr(0) & Chr(24) & Chr(2) & Chr(29) & Chr(4) & Chr(12) & Chr(30) & Chr(15)
Check "Ctl_Init W", serial.Ctl_Init("W", block), 0
Check "Ctl_Init R", serial.Ctl_Init("R", again), 0
Check "  its parts", Hexed(Left(again, 3) & Mid(again, 7, 5)), "326E0718021D040C"

' Soft links and their flanks, and texts.
Dim target, kind, p1, p2, high, low
Check "Ctl_Soft W", serial.Ctl_Soft("W", 50, 2, 7, "O", 3, 10, True, False), 0
Check "Ctl_Soft R", serial.Ctl_Soft("R", 50, 2, target, kind, p1, p2, high, low), 0
Check "  its parts", target & kind & p1 & "," & p2 & high & low, "7O3,10TrueFalse"
Check "Ctl_Soft W", serial.Ctl_Soft("W", 51, 2, 7, "O", 3, 10, False, True), 0
Last "Ctl_Soft R", serial.Ctl_Soft("R", 51, 2, x, x, x, x, x, x), "Boolean True"
Last "Ctl_Soft R", serial.Ctl_Soft("R", 51, 2, x, x, x, x), "Byte 10"
x = 3
Last "Ctl_Soft W", serial.Ctl_Soft("W", 51, 2, x, "O", x, x), "Integer 3"
Check "Ctl_Soft W", serial.Ctl_Soft("W", 51, 2, 0, "O", 0), 0
Check "Ctl_Lang E", serial.Ctl_Lang("E"), 0
Check "Ctl_IRText W", serial.Ctl_IRText("W", 17, "Volume up"), 0

' A preset.
Dim text, delay1, delay2, flag
Check "Preset W", serial.Preset("W", 61, "Evening at home ", 5, "abcdefghijkl", 10, 0, 1), 0
Check "Preset R", serial.Preset("R", 61, text, 5, data, delay1, delay2, flag), 0
Check "  its parts", text & data & delay1 & delay2 & flag, "Evening at home abcdefghijkl100255"
Last "Preset R", serial.Preset("R", 61, x, 5, x, x, x, x), "Byte 255"
Last "Preset R", serial.Preset("R", 61, x, 5, x), "String abcdefghijkl"
Check "address of its records", serial.DPHPreset(61) & "," & serial.DPLPreset(61, 3), "128,102"

' Simulation records, converted in the caller's own variable.
data = Chr(12) & Chr(59) & "abc" & Chr(30) & Chr(0) & "def" & Chr(1) & Chr(2) & "ghi" & Chr(3) & Chr(4) & "jkl"
Check "Simulation W", serial.Simulation("W", 6, 23, data), 0
Check "  its parts", Hexed(Left(data, 2) & Right(data, 1)), "1259FF"
Check "Simulation R", serial.Simulation("R", 6, 23, data), 0
Check "  its parts", Hexed(Left(data, 2)) & Len(data), "0C3B20"

' Switch times.
Dim days, hour, minute
Check "SwitchTime W", serial.SwitchTime("W", 100, 127, 23, 59, Chr(101) & Chr(4)), 0
Check "SwitchTime R", serial.SwitchTime("R", 100, days, hour, minute, data), 0
Check "  its parts", days & hour & minute & Hexed(data), "12723596504"
Last "SwitchTime R", serial.SwitchTime("R", 100, x, x, x, x), "String e" & Chr(4)
x = 0
Last "SwitchTime R", serial.SwitchTime("R", 100, x, x, x, x), "String e" & Chr(4)
Last "SwitchTime W", serial.SwitchTime("W", 101, x, x, x, x), "String "

CloseLink
