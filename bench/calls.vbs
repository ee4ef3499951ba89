' What a call of a script costs above the empty turn of its loop, in nanoseconds: a call of the component, and of a
' dictionary, an object of the script host's own.
Option Explicit
Const turns = 200000
Dim serial, dictionary, i, x, start, emptyTime, callTime, dictionaryTime
Set serial = CreateObject("VelkCom.Serial")
Set dictionary = CreateObject("Scripting.Dictionary")
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
  x = dictionary.Exists(4)
Next
dictionaryTime = Timer - start
Function PerTurn(time)
  PerTurn = CLng((time - emptyTime) / turns * 1000000000)
End Function
WScript.Echo "{""script.call"": " & PerTurn(callTime) & ", ""script.dictionary"": " & PerTurn(dictionaryTime) & "}"
