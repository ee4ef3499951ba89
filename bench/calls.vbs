' What a call of a script costs above the empty turn of its loop, in nanoseconds: a call of the component, and of an
' object that does nothing, which is what the script host takes for itself. They take short turns, and the least that
' each has needed counts: whatever else the machine does only adds to it.
Option Explicit
Const turns = 2000
Const rounds = 400
Dim serial, idle, i, x, start, round, least(2)
Set serial = CreateObject("VelkCom.Serial")
Set idle = CreateObject("VelkBench.Idle")
For round = 1 To rounds
  start = idle.Clock
  For i = 1 To turns
  Next
  Keep 0, idle.Clock - start
  start = idle.Clock
  For i = 1 To turns
    x = serial.LowNibbleBit(4)
  Next
  Keep 1, idle.Clock - start
  start = idle.Clock
  For i = 1 To turns
    x = idle.LowNibbleBit(4)
  Next
  Keep 2, idle.Clock - start
Next
Sub Keep(which, time)
  If IsEmpty(least(which)) Or time < least(which) Then least(which) = time
End Sub
Function PerTurn(which)
  PerTurn = CLng((least(which) - least(0)) / turns * 1000000000)
End Function
WScript.Echo "{""script.call"": " & PerTurn(1) & ", ""script.idle"": " & PerTurn(2) & "}"
