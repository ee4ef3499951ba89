' Reads and writes a simulated controller over one link. Prints one line for each check.
' Arguments: "tcp" port password kind, or "com" port "echo" or "fast".
Option Explicit

Dim failures, serial, link, label
failures = 0
Set serial = CreateObject("VelkCom.Serial")
Set link = WScript.Arguments
label = link(0) & " " & link(link.Count - 1) & ": "

Sub Check(name, got, expected)
  If got = expected Then
    WScript.Echo "ok " & label & name
  Else
    failures = failures + 1
    WScript.Echo "FAILED " & label & name & ": got [" & got & "], expected [" & expected & "]"
  End If
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

Dim mode, items, count, again, data, reply
Check "open", OpenLink(), 0
Check "open twice", OpenLink() > 0, True
Check "the link in use", serial.TCP, link(0) = "tcp"
If link(0) = "tcp" Then Check "kind", serial.SoortETH, link(3)

count = 255
Check "read output 5", serial.Ctl_Param("R", 5, mode, items, count), 0
Check "its mode", mode, serial.ModeToStr(5, 5)
Check "its number of items", count > 0, True
Check "an item each", Len(items), count
Check "write it", serial.Ctl_Param("W", 5, mode, items), 0
again = ""
Check "read it again", serial.Ctl_Param("R", 5, mode, again), 0
Check "it is the same", again, items

data = Chr(1) & Chr(0) & Chr(255) & "*#"
Check "write bytes", Asc(serial.WriteCom(5, 5, 200, "V", data)), 0
reply = serial.ReadCom(5, 5, 200, "V")
Check "read them", reply, Chr(0) & data
Check "no error is left over", Asc(serial.ReadCom(16, 5, 16, "V")), 0

If link(0) = "com" Then
  Check "close", serial.CloseCom(), 0
Else
  Check "close", serial.CloseTCP(), 0
End If

WScript.Echo "done"
WScript.Quit failures
