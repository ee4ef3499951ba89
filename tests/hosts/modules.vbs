' Reads and writes modules over one link: a known model, an unknown one, a sample and a GSM text.

Check "open", OpenLink(), 0

Dim data, offset, model, cpu, firmware
offset = 0
Check "read a known module", serial.Module("R", "090500", data, offset, model, cpu, firmware), 0
Check "its model", model & "," & cpu & "," & firmware, "MT007/500VA,48,0105"
Check "its record", Mid(Hexed(data), 3), "040603070208010001020304050607"
Check "its offset: one for the model, one for the piece", offset, 2

offset = 0
Check "write it", serial.Module("W", "090500", Chr(9) & Mid(data, 2), offset, model), 0
Check "its offset: one more for the piece behind the sixteenth byte", offset, 3
offset = 0
Check "read it again", serial.Module("R", "090500", data, offset, model), 0
Check "its record", Hexed(data), "09040603070208010001020304050607"

model = ""
offset = 0
Check "read an unknown module", serial.Module("R", "090100", data, offset, model, cpu, firmware), 0
Check "its model", "[" & model & "]" & cpu & firmware, "[]0"
Check "its record", Hexed(data), "05010602070308040901"

data = "a sample of more than sixteen bytes" & Chr(0)
Check "write a sample", serial.Sample("W", "090500", 3, 1, data), 0
data = ""
Check "read it", serial.Sample("R", "090500", 3, 1, data), 0
Check "its bytes", Left(data, 36), "a sample of more than sixteen bytes" & Chr(0)

Check "write a GSM text", serial.GSMtext("W", "930100", 5, "The door bell rang"), 0
Check "read it", serial.GSMtext("R", "930100", 5, data), 0
Check "its text", Len(data) & Left(data, 18), "64The door bell rang"

CloseLink
