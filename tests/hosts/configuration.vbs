' Goes through every configuration method and timed function over one link.

Check "open", OpenLink(), 0

' Output parameters: every item there and back, the mode alone, a wrong item.
Dim mode, items, count, again
mode = ""
items = ""
count = 255
Check "read output 6", serial.Ctl_Param("R", 6, mode, items, count), 0
Check "write output 60 like it", serial.Ctl_Param("W", 60, mode, items), 0
Check "read output 60", serial.Ctl_Param("R", 60, again, items, count), 0
Check "the same mode", again, mode
Check "write one item", serial.Ctl_Param("W", 60, mode, Chr(200), 1, 4), 0
Check "read one item", serial.Ctl_Param("R", 60, mode, items, 1, 4), 0
Check "it is there", Hexed(items), "C8"
Check "refuse a wrong item", serial.Ctl_Param("W", 60, mode, "x", 1, 6), 105
Check "refuse a wrong length", serial.Ctl_Param("W", 60, mode, "xx", 1, 6), 104
Check "store a mode alone", serial.Ctl_Param("W", 61, "UD", "", 0), 0
Check "read a mode alone", serial.Ctl_Param("R", 61, mode, items, 0), 0
Check "it is the mode", mode, "UD"

' The initialisation block and the clock.
Dim block
block = Chr(50) & Chr(110) & Chr(7) & Chr(0) & Chr(0) & Chr(0) & Chr(24) & Chr(2) & Chr(29) & Chr(4) & Chr(12) & Chr(30) & Chr(15)
Check "set settings and clock", serial.Ctl_Init("W", block), 0
again = ""
Check "read the block", serial.Ctl_Init("R", again), 0
Check "its length", Len(again), 16
Check "its settings", Hexed(Left(again, 3)), "326E07"
Check "its date and hour", Hexed(Mid(again, 7, 5)), "18021D040C"
Check "refuse 29 February 2023", serial.Ctl_Init("W", Left(block, 6) & Chr(23) & Mid(block, 8)), 105

' A soft link and its flanks.
Dim target, kind, p1, p2, high, low
Check "write a link", serial.Ctl_Soft("W", 50, 2, 7, "O", 3, 10, True, False), 0
Check "read it", serial.Ctl_Soft("R", 50, 2, target, kind, p1, p2, high, low), 0
Check "its parts", target & kind & p1 & "," & p2 & high & low, "7O3,10TrueFalse"
Check "refuse a link to itself", serial.Ctl_Soft("W", 50, 1, 50, "O", 2), 112
Check "remove it", serial.Ctl_Soft("W", 50, 2, 0, "O", 0), 0

' Texts.
Check "display in English", serial.Ctl_Lang("E"), 0
Check "no such language", serial.Ctl_Lang("X"), 105
Check "an infrared text", serial.Ctl_IRText("W", 17, "Volume up"), 0
Check "infrared texts cannot be read", serial.Ctl_IRText("R", 17, ""), 99

' A preset.
Dim text, data, delay1, delay2, flag
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
Check "no such block", serial.SwitchTime("R", 128, days, hour, minute, data), 100
Check "clear it", serial.SwitchTime("W", 100, 0, 0, 0, ""), 0

CloseLink
