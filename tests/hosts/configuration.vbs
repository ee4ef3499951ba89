' Goes through the link, every configuration method and every timed function over one link.

Check "open", OpenLink(), 0
Check "open twice", OpenLink() > 0, True
Check "the link in use", serial.TCP, link(0) = "tcp"
If link(0) = "tcp" Then Check "kind", serial.SoortETH, link(3)

Dim mode, items, count, again, data
data = Chr(1) & Chr(0) & Chr(255) & "*#"
Check "write bytes", Asc(serial.WriteCom(5, 5, 200, "V", data)), 0
Check "read them", serial.ReadCom(5, 5, 200, "V"), Chr(0) & data

' Output parameters: every item there and back, the mode alone, a wrong item.
count = 255
Check "read output 5", serial.Ctl_Param("R", 5, mode, items, count), 0
Check "its mode and an item each", mode & count & "," & Len(items), "T112,12"
Check "read output 6", serial.Ctl_Param("R", 6, mode, items), 0
Check "write output 60 like it", serial.Ctl_Param("W", 60, mode, items), 0
Check "read output 60", serial.Ctl_Param("R", 60, mode, again), 0
Check "it is the same", again, items
Check "write one item", serial.Ctl_Param("W", 60, mode, Chr(200), 1, 4), 0
Check "read one item", serial.Ctl_Param("R", 60, mode, items, 1, 4), 0
Check "it is there", Hexed(items), "C8"

' One variable for several results keeps the last one, in the type that it had where that is possible.
Dim x
Check "empty for three results", serial.Ctl_Param("R", 5, x, x, x), 0
Check "  the last one", TypeName(x) & x, "Integer0"
x = "255"
Check "a text for three results", serial.Ctl_Param("R", 5, x, x, x), 0
Check "  the last one", TypeName(x) & x, "String12"
x = 255
Check "a number for a mode", serial.Ctl_Param("R", 5, x), 0
Check "  the mode", TypeName(x) & x, "StringT1"
x = Empty
Check "empty at a failure", serial.Ctl_Param("R", 0, x, x, x), 112
Check "  the last one", TypeName(x) & x, "Integer0"

' The initialisation block and the clock.
Dim block
block = Chr(50) & Chr(110) & Chr(7) & Chr(0) & Chr(0) & Chr(0) & Chr(24) & Chr(2) & Chr(29) & Chr(4) & Chr(12) & Chr(30) & Chr(15)
Check "set settings and clock", serial.Ctl_Init("W", block), 0
again = ""
Check "read the block", serial.Ctl_Init("R", again), 0
Check "its settings", Hexed(Left(again, 3)), "326E07"
Check "its date and hour", Hexed(Mid(again, 7, 5)), "18021D040C"

' A soft link and its flanks.
Dim target, kind, p1, p2, high, low
Check "write a link", serial.Ctl_Soft("W", 50, 2, 7, "O", 3, 10, True, False), 0
Check "read it", serial.Ctl_Soft("R", 50, 2, target, kind, p1, p2, high, low), 0
Check "its parts", target & kind & p1 & "," & p2 & high & low, "7O3,10TrueFalse"

' Texts.
Check "display in English", serial.Ctl_Lang("E"), 0
Check "an infrared text", serial.Ctl_IRText("W", 17, "Volume up"), 0

' A preset.
Dim text, delay1, delay2, flag
data = "abcdefghijkl"
Check "write a preset", serial.Preset("W", 61, "Evening at home ", 5, data, 10, 0, 1), 0
data = ""
Check "read it", serial.Preset("R", 61, text, 5, data, delay1, delay2, flag), 0
Check "its parts", text & data & delay1 & "," & delay2 & "," & flag, "Evening at home abcdefghijkl10,0,255"
Check "address of its records", serial.DPHPreset(61) & "," & serial.DPLPreset(61, 3), "128,102"

' Simulation records, converted in the caller's own variable.
data = Chr(12) & Chr(59) & "abc" & Chr(30) & Chr(0) & "def" & Chr(1) & Chr(2) & "ghi" & Chr(3) & Chr(4) & "jkl"
Check "write a simulation", serial.Simulation("W", 6, 23, data), 0
Check "it comes back converted", Hexed(Left(data, 2)) & Hexed(Right(data, 1)), "1259FF"
Check "read it", serial.Simulation("R", 6, 23, data), 0
Check "its records", Hexed(Left(data, 2)) & Len(data), "0C3B20"

' Switch times.
Dim days, hour, minute
data = Chr(101) & Chr(4)
Check "write a switch time", serial.SwitchTime("W", 100, 127, 23, 59, data), 0
data = ""
Check "read it", serial.SwitchTime("R", 100, days, hour, minute, data), 0
Check "its parts", days & "," & hour & "," & minute & "," & Hexed(data), "127,23,59,6504"

CloseLink
