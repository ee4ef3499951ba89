' Reads one output of the controller: its mode and every parameter item.
'   cscript //nologo output.vbs OUTPUT tcp HOST PORT PASSWORD
'   cscript //nologo output.vbs OUTPUT com PORT echo|fast
Option Explicit

Dim words, serial, result, mode, items, count, i, letter
Set words = WScript.Arguments
Set serial = CreateObject("VelkCom.Serial")

If words(1) = "tcp" Then
  result = serial.OpenTCP(words(2), SignedPort(words(3)), words(4))
Else
  result = serial.OpenCom(words(2), 9600, words(3) = "fast")
End If
If result <> 0 Then Fail "the link does not open"

count = 255
result = serial.Ctl_Param("R", words(0), mode, items, count)
If result <> 0 Then Fail "the output cannot be read"

WScript.Echo "  output " & words(0) & ": mode " & mode & ", " & count & " parameter items"
For i = 1 To Len(items)
  letter = Mid(items, i, 1)
  If letter = "M" Or letter = "S" Then
    WScript.Echo "    item " & i - 1 & ": " & letter
  Else
    WScript.Echo "    item " & i - 1 & ": " & Asc(letter)
  End If
Next

If words(1) = "tcp" Then serial.CloseTCP Else serial.CloseCom

' TCP ports above 32767 are passed as negative numbers.
Function SignedPort(port)
  SignedPort = CLng(port)
  If SignedPort > 32767 Then SignedPort = SignedPort - 65536
End Function

Sub Fail(what)
  WScript.Echo "  " & what & ": result " & result
  WScript.Quit 1
End Sub
