' What the VBScript hosts share; the runner puts it in front of each.
' Arguments, where a link is used: "tcp" port password kind, or "com" port "echo" or "fast".
Option Explicit

Dim failures, serial, link, label
failures = 0
Set serial = CreateObject("VelkCom.Serial")
Set link = WScript.Arguments
If link.Count > 0 Then label = link(0) & " " & link(link.Count - 1) & ": "

Sub Check(name, got, expected)
  If got = expected Then
    WScript.Echo "ok " & label & name
  Else
    failures = failures + 1
    WScript.Echo "FAILED " & label & name & ": got [" & got & "], expected [" & expected & "]"
  End If
End Sub

' The same for type and value: "Byte 89".
Sub CheckType(name, got, expected)
  Check name, TypeName(got) & " " & got, expected
End Sub

' A call that has to succeed with the variable x for several results, which keeps the last one.
Dim x
Sub Last(name, result, expected)
  Check name, result, 0
  CheckType "  the last result", x, expected
  x = Empty
End Sub

Function OpenLink()
  Dim port
  port = CLng(link(1))
  If link(0) = "com" Then
    OpenLink = serial.OpenCom(port, 9600, link(2) = "fast")
  Else
    If port > 32767 Then port = port - 65536
    OpenLink = serial.OpenTCP("127.0.0.1", port, link(2))
  End If
End Function

' A byte string as hexadecimal, so that differences can be read.
Function Hexed(text)
  Dim i
  For i = 1 To Len(text)
    Hexed = Hexed & Right("0" & Hex(Asc(Mid(text, i, 1))), 2)
  Next
End Function

Sub CloseLink()
  If link(0) = "com" Then Check "close", serial.CloseCom(), 0 Else Check "close", serial.CloseTCP(), 0
  Finish
End Sub

Sub Finish()
  WScript.Echo "done"
  WScript.Quit failures
End Sub
