' Reads and writes modules over one link, a sample and a GSM text.

Dim data, place, model, cpu, firmware, first
Check "open", OpenLink(), 0
place = 0
Check "Module R", serial.Module("R", "090500", data, place, model, cpu, firmware), 0
Check "  its model", model & cpu & "," & firmware, "MT007/500VA48,0105"
Check "  its record", Mid(Hexed(data), 3), "040603070208010001020304050607"
Check "  its offset: one for the model, one for the piece", place, 2
place = 0
Last "Module R", serial.Module("R", "090500", data, place, x, x, x), "String 0105"
Last "Module R", serial.Module("R", "090500", x, x, x, x, x), "String 0105"
x = "090500"
Last "Module R", serial.Module("R", x, x), "String " & data
Last "Module W", serial.Module("W", "090500", data, x, x, x, x), "String 0105"

place = 0
first = Chr(9) & Mid(data, 2)
Check "Module W", serial.Module("W", "090500", first, place, model), 0
Check "  its offset: one more for the piece behind the sixteenth byte", place, 3
place = 0
Check "Module R", serial.Module("R", "090500", data, place, model), 0
Check "  its record", Hexed(data), "09040603070208010001020304050607"

Check "Sample W", serial.Sample("W", "090500", 3, 1, "a sample of more than sixteen bytes"), 0
Check "Sample R", serial.Sample("R", "090500", 3, 1, data), 0
Check "  its bytes", Left(data, 36), "a sample of more than sixteen bytes" & Chr(0)

Check "GSMtext W", serial.GSMtext("W", "930100", 5, "The door bell rang"), 0
Check "GSMtext R", serial.GSMtext("R", "930100", 5, data), 0
Check "  its text", Len(data) & Left(data, 18), "64The door bell rang"

CloseLink
