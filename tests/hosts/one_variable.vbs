' Every method with several results, with one variable for all of them: the call succeeds, and the variable
' keeps the last result.

Sub CheckLast(name, result, got, kind, value)
  Check name, result, 0
  Check name & ": the last result", TypeName(got) & " " & got, kind & " " & value
End Sub

Check "open", OpenLink(), 0

Dim x, mode, items, record, place

items = ""
Check "read output 5", serial.Ctl_Param("R", 5, mode, items), 0
x = Empty
CheckLast "Ctl_Param", serial.Ctl_Param("R", 5, x, x, x), x, "Integer", 0
x = Empty
CheckLast "  two of its results", serial.Ctl_Param("R", 5, mode, x, x), x, "Integer", 0
Check "  and a third", mode, "T1"
x = 255
CheckLast "  a number", serial.Ctl_Param("R", 5, x, x, x), x, "Integer", 12
x = "255"
CheckLast "  a text", serial.Ctl_Param("R", 5, x, x, x), x, "String", "12"
x = 255
CheckLast "  a result that is what was there", serial.Ctl_Param("R", 5, x), x, "String", "T1"
x = Empty
Check "  a failure", serial.Ctl_Param("R", 0, x, x, x), 112
Check "  a failure: the last result", TypeName(x) & x, "Integer0"

x = "T1"
CheckLast "  again", serial.Ctl_Param("R", 5, x, x), x, "String", items
CheckLast "  and again", serial.Ctl_Param("R", 5, x, x), x, "String", items

Check "write a link", serial.Ctl_Soft("W", 51, 2, 7, "O", 3, 10, False, True), 0
x = Empty
CheckLast "Ctl_Soft", serial.Ctl_Soft("R", 51, 2, x, x, x, x, x, x), x, "Boolean", True
x = Empty
CheckLast "  without flanks", serial.Ctl_Soft("R", 51, 2, x, x, x, x), x, "Byte", 10
x = 3
CheckLast "  writing", serial.Ctl_Soft("W", 51, 2, x, "O", x, x), x, "Integer", 3
Check "remove it", serial.Ctl_Soft("W", 51, 2, 0, "O", 0), 0

Check "write a preset", serial.Preset("W", 62, "Evening at home ", 5, "abcdefghijkl", 10, 0, 1), 0
x = Empty
CheckLast "Preset", serial.Preset("R", 62, x, 5, x, x, x, x), x, "Byte", 255
x = Empty
CheckLast "  its texts", serial.Preset("R", 62, x, 5, x), x, "String", "abcdefghijkl"

Check "write a switch time", serial.SwitchTime("W", 101, 127, 23, 59, Chr(101) & Chr(4)), 0
x = Empty
CheckLast "SwitchTime", serial.SwitchTime("R", 101, x, x, x, x), x, "String", Chr(101) & Chr(4)
x = 0
CheckLast "  a number takes a text", serial.SwitchTime("R", 101, x, x, x, x), x, "String", Chr(101) & Chr(4)
x = Empty
CheckLast "  writing", serial.SwitchTime("W", 101, x, x, x, x), x, "String", ""

x = Empty
place = 0
CheckLast "Module", serial.Module("R", "090500", record, place, x, x, x), x, "String", "0105"
Check "  its record", Len(record) & "," & place, "16,2"
x = Empty
CheckLast "  everything", serial.Module("R", "090500", x, x, x, x, x), x, "String", "0105"
x = Empty
CheckLast "  writing", serial.Module("W", "090500", record, x, x, x, x), x, "String", "0105"
x = "090500"
CheckLast "  the serial number's own variable", serial.Module("R", x, x), x, "String", record

CloseLink
