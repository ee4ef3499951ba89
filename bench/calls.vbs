' What a call of a script costs above the empty turn of its loop, in nanoseconds: a call of the component, and of an
' object that does nothing, which is what the script host takes for itself.
Option Explicit
Const turns = 500000
Dim serial, idle, i, x, start, emptyTime, callTime, idleTime
Set serial = CreateObject("VelkCom.Serial")
Set idle = CreateObject("VelkBench.Idle")
start = Timer
For i = 1 To turns
Next
emptyTime = Timer - start
start = Timer
For i = 1 To turns
  x = serial.LowNibbleBit(4)
Next
callTime = Timer - start
start = Timer
For i = 1 To turns
  x = idle.LowNibbleBit(4)
Next
idleTime = Timer - start
Function PerTurn(time)
  PerTurn = CLng((time - emptyTime) / turns * 1000000000)
End Function
WScript.Echo "{""script.call"": " & PerTurn(callTime) & ", ""script.idle"": " & PerTurn(idleTime) & "}"
