' What a call of a script costs above the empty turn of its loop, in nanoseconds.
Option Explicit
Const turns = 200000
Dim serial, i, x, start, emptyTime, callTime
Set serial = CreateObject("VelkCom.Serial")
start = Timer
For i = 1 To turns
Next
emptyTime = Timer - start
start = Timer
For i = 1 To turns
  x = serial.LowNibbleBit(4)
Next
callTime = Timer - start
WScript.Echo "{""script.call"": " & CLng((callTime - emptyTime) / turns * 1000000000) & "}"
