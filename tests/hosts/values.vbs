' Value helpers, properties and errors, as a VBScript host uses them. Prints one line for each check.
Option Explicit

Dim failures, serial
failures = 0
Set serial = CreateObject("VelkCom.Serial")

Sub Check(name, got, expected)
  If VarType(got) = VarType(expected) And got = expected Then
    WScript.Echo "ok " & name
  Else
    failures = failures + 1
    WScript.Echo "FAILED " & name & ": got " & TypeName(got) & " [" & got & "], expected [" & expected & "]"
  End If
End Sub

Sub CheckError(name, number)
  Check name, Err.Number, CLng(number)
  If number <> 0 Then Check name & ": description", Len(Err.Description) > 0, True
  Err.Clear
End Sub

' Values by literal, by variable and by expression.
Dim number, text, mixed
number = 59
text = " 59 "
Check "a text variable", serial.dectobcd(text), CByte(89)
Check "an expression", serial.DECtoBCD(number + 0.4), CByte(89)
Check "an uninitialised variable", serial.DECtoBCD(mixed), CByte(0)
Check "a fraction", serial.LdZr(CSng(0.1), 5), "000.1"
Check "an empty result", IsEmpty(serial.WhatBit(0)), True
Check "a variable stays as it was", TypeName(text) & text, "String 59 "

' Properties.
serial.SerAddress = "17"
Check "a property from a text", serial.SerAddress, CByte(17)

' Bytes in texts.
Dim code, all
all = ""
For code = 0 To 255
  ' The codes between are other characters to a script host.
  If code < 128 Or code > 159 Then all = all & Chr(code)
Next
serial.SoortETH = all
Check "bytes in a text", serial.SoortETH = all, True

' Results that come back in arguments.
Dim passWord, kept
passWord = ""
kept = 5678
Check "a refused connection", serial.OpenTCP("127.0.0.1", 1, passWord), CByte(252)
Check "a result in an argument", Len(passWord), CLng(4)
Check "close", serial.CloseTCP, CByte(0)
serial.OpenTCP "127.0.0.1", 1, kept
Check "an unchanged argument keeps its type", TypeName(kept) & kept, "Integer5678"
serial.CloseTCP

' Errors.
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
Check "trapped errors are results", serial.CloseCom, CByte(84)
CheckError "and raise nothing", 0

WScript.Echo "done"
WScript.Quit failures
