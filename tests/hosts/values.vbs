' Value helpers, properties and errors, as a VBScript host uses them.

' Values by literal, by variable and by expression.
Dim number, text, mixed
number = 59
text = " 59 "
CheckType "dectobcd(text)", serial.dectobcd(text), "Byte 89"
CheckType "DECtoBCD(number + 0.4)", serial.DECtoBCD(number + 0.4), "Byte 89"
CheckType "DECtoBCD(mixed)", serial.DECtoBCD(mixed), "Byte 0"
CheckType "LdZr(CSng(0.1), 5)", serial.LdZr(CSng(0.1), 5), "String 000.1"
CheckType "WhatBit(0)", serial.WhatBit(0), "Empty "
CheckType "text", text, "String  59 "

serial.SerAddress = "17"
CheckType "SerAddress", serial.SerAddress, "Byte 17"

' Bytes in texts. The codes between are other characters to a script host.
Dim code, all
For code = 0 To 255
  If code < 128 Or code > 159 Then all = all & Chr(code)
Next
serial.SoortETH = all
Check "bytes in a text", serial.SoortETH = all, True

' Results that come back in arguments; one that has not changed keeps its type.
Dim passWord, kept
passWord = ""
kept = 5678
CheckType "OpenTCP('127.0.0.1', 1, passWord)", serial.OpenTCP("127.0.0.1", 1, passWord), "Byte 252"
CheckType "Len(passWord)", Len(passWord), "Long 4"
CheckType "CloseTCP", serial.CloseTCP, "Byte 0"
CheckType "OpenTCP('127.0.0.1', 1, kept)", serial.OpenTCP("127.0.0.1", 1, kept), "Byte 252"
CheckType "kept", kept, "Integer 5678"
CheckType "CloseTCP", serial.CloseTCP, "Byte 0"

Sub CheckError(name, number)
  Check name, Err.Number, number
  Check "  is described", Err.Description <> "", True
  Err.Clear
End Sub

On Error Resume Next
number = serial.DECtoBCD(160)
CheckError "overflow", 6
text = serial.ReadCom(1, 5, 1, "V")
CheckError "port not open", 8018
number = serial.DECtoBCD("2,5")
CheckError "a decimal comma", 13
number = serial.DECtoBCD(1, 2)
CheckError "too many arguments", 450
number = serial.NoSuchMethod(1)
CheckError "no such method", 438
CheckType "trapped errors are results", serial.CloseCom, "Byte 84"
Check "  and raise nothing", Err.Number, 0

Finish
