#include "cli/velk/doctor/windows/host_script.h"

namespace velk::cli {

/// Characters up to 127 alone pass through `Chr` on every code page. The house of the simulator says what is
/// read before it is written.
const std::string_view hostScript = R"vbs(Option Explicit
Dim serial, link, family, count
Set link = WScript.Arguments
count = 0

Sub Fail(text)
  WScript.Echo "FAILED " & family & ": " & text
End Sub

Function Shown(value)
  Dim i, c
  For i = 1 To Len(value)
    c = Mid(value, i, 1)
    If Asc(c) < 32 Or Asc(c) > 126 Then c = "\x" & Right("0" & Hex(Asc(c)), 2)
    Shown = Shown & c
  Next
End Function

Sub Check(what, got, expected)
  count = count + 1
  If got = expected Then Exit Sub
  Fail what & " is [" & Shown(got) & "], expected [" & Shown(expected) & "]"
End Sub

Sub CheckError
  If Err.Number <> 0 Then Fail "error " & Err.Number & " (0x" & Hex(Err.Number) & ") " & Err.Description
  Err.Clear
End Sub

' A character beyond those of ASCII, where this host can make one without the code page.
Function HighCharacter()
  On Error Resume Next
  HighCharacter = Chr(200)
  HighCharacter = ChrW(200)
  Err.Clear
End Function

Sub TryOpen
  Dim port
  port = CLng(link(1))
  If link(0) = "com" Then
    Check "OpenCom", serial.OpenCom(port, 9600, link(2) = "fast"), 0
    Check "OpenCom once more", serial.OpenCom(port, 9600, link(2) = "fast"), 56
  Else
    If port > 32767 Then port = port - 65536
    Check "OpenTCP", serial.OpenTCP("127.0.0.1", port, link(2)), 0
    Check "SoortETH", serial.SoortETH, link(3)
  End If
  Check "TCP", serial.TCP, link(0) = "tcp"
End Sub

Sub TryHelpers
  Check "DECtoBCD", serial.DECtoBCD(59), 89
  Check "LdZr", serial.LdZr(7, 3), "007"
  Check "LowNibbleBit", serial.LowNibbleBit(4), 2
End Sub

Sub TryBytes
  Dim data
  data = Chr(1) & Chr(0) & HighCharacter() & "*#"
  Check "WriteCom", Left(serial.WriteCom(5, 5, 200, "V", data), 1), Chr(0)
  Check "ReadCom", serial.ReadCom(5, 5, 200, "V"), Chr(0) & data
End Sub

Sub TryOutputs
  Dim mode, items, number, again
  number = 255
  Check "Ctl_Param R", serial.Ctl_Param("R", 5, mode, items, number), 0
  Check "its mode and items", mode & number & "," & Len(items), "T112,12"
  Check "Ctl_Param W", serial.Ctl_Param("W", 60, mode, items), 0
  Check "Ctl_Param R", serial.Ctl_Param("R", 60, mode, again), 0
  Check "its items", again, items
  Check "Ctl_Param of no output", serial.Ctl_Param("R", 0, mode, items, number), 112
  Check "Ctl_IRText W", serial.Ctl_IRText("W", 17, "Volume up"), 0
End Sub

Sub TryController
  Dim block, again, target, kind, p1, p2, high, low
  block = Chr(50) & Chr(110) & Chr(7) & Chr(0) & Chr(0) & Chr(0) & Chr(24) & Chr(2) & Chr(29) & Chr(4) & Chr(12) & Chr(30) & Chr(15)
  Check "Ctl_Init W", serial.Ctl_Init("W", block), 0
  Check "Ctl_Init R", serial.Ctl_Init("R", again), 0
  Check "its start", Left(again, 3), Left(block, 3)
  Check "Ctl_Soft W", serial.Ctl_Soft("W", 50, 2, 7, "O", 3, 10, True, False), 0
  Check "Ctl_Soft R", serial.Ctl_Soft("R", 50, 2, target, kind, p1, p2, high, low), 0
  Check "its parts", target & kind & p1 & "," & p2 & CInt(high) & CInt(low), "7O3,10-10"
  Check "Ctl_Lang", serial.Ctl_Lang("E"), 0
End Sub

Sub TryTimed
  Dim text, data, delay1, delay2, flag, days, hour, minute
  Check "Preset W", serial.Preset("W", 61, "Evening at home ", 5, "abcdefghijkl", 10, 0, 1), 0
  Check "Preset R", serial.Preset("R", 61, text, 5, data, delay1, delay2, flag), 0
  Check "its parts", text & data & delay1 & delay2 & flag, "Evening at home abcdefghijkl100255"
  data = Chr(12) & Chr(59) & "abc" & Chr(30) & Chr(0) & "def" & Chr(1) & Chr(2) & "ghi" & Chr(3) & Chr(4) & "jkl"
  Check "Simulation W", serial.Simulation("W", 6, 23, data), 0
  Check "Simulation R", serial.Simulation("R", 6, 23, data), 0
  Check "its start", Left(data, 5) & Len(data), Chr(12) & Chr(59) & "abc20"
  Check "SwitchTime W", serial.SwitchTime("W", 100, 127, 23, 59, Chr(101) & Chr(4)), 0
  Check "SwitchTime R", serial.SwitchTime("R", 100, days, hour, minute, data), 0
  Check "its parts", days & "," & hour & "," & minute & data, "127,23,59e" & Chr(4)
End Sub

Sub TryModules
  Dim data, place, model, cpu, firmware
  place = 0
  Check "Module R", serial.Module("R", "090500", data, place, model, cpu, firmware), 0
  Check "its parts", model & "," & cpu & "," & firmware & "," & Len(data), "MT007/500VA,48,0105,16"
  place = 0
  Check "Module W", serial.Module("W", "090500", data, place, model), 0
  Check "its pieces", place, 3
  Check "Sample W", serial.Sample("W", "090500", 3, 1, "a sample of more than sixteen bytes"), 0
  Check "Sample R", serial.Sample("R", "090500", 3, 1, data), 0
  Check "its bytes", Left(data, 36), "a sample of more than sixteen bytes" & Chr(0)
  Check "GSMtext W", serial.GSMtext("W", "930100", 5, "The door bell rang"), 0
  Check "GSMtext R", serial.GSMtext("R", "930100", 5, data), 0
  Check "its text", Len(data) & Left(data, 18), "64The door bell rang"
End Sub

Sub TryClose
  If link(0) = "com" Then Check "CloseCom", serial.CloseCom(), 0 Else Check "CloseTCP", serial.CloseTCP(), 0
End Sub

On Error Resume Next
family = "create"
Set serial = CreateObject("VelkCom.Serial")
If Err.Number <> 0 Then
  CheckError
  WScript.Quit 1
End If
family = "link"
TryOpen
CheckError
family = "helpers"
TryHelpers
CheckError
family = "bytes"
TryBytes
CheckError
family = "outputs"
TryOutputs
CheckError
family = "controller"
TryController
CheckError
family = "timed"
TryTimed
CheckError
family = "modules"
TryModules
CheckError
family = "close"
TryClose
CheckError
WScript.Echo "compared: " & count & " results"
)vbs";

}  // namespace velk::cli
