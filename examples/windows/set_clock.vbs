' VBScript: sets the controller's clock to that of this PC, when it is off by more than two seconds.
'   cscript //nologo set_clock.vbs HOST PORT PASSWORD
Option Explicit
Const clockLength = 7, clockOffset = 6 ' year, month, day, weekday, hours, minutes, seconds
Const secondsPerDay = 86400

Dim words, serial, there, moment, text
Set words = WScript.Arguments
Set serial = CreateObject("VelkCom.Serial")
Must serial.OpenTCP(words(0), SignedPort(words(1)), words(2)), "the link does not open"

Must serial.Ctl_Init("R", text, clockLength, clockOffset), "the clock cannot be read"
there = DateSerial(2000 + Part(1), Part(2), Part(3)) + TimeSerial(Part(5), Part(6), Part(7))
WScript.Echo "controller: " & Shown(there)

moment = Now
If Abs(CDbl(moment) - CDbl(there)) * secondsPerDay > 2 Then
  text = Chr(Year(moment) Mod 100) & Chr(Month(moment)) & Chr(Day(moment)) & Chr(Weekday(moment, vbMonday)) & _
         Chr(Hour(moment)) & Chr(Minute(moment)) & Chr(Second(moment))
  Must serial.Ctl_Init("W", text, clockLength, clockOffset), "the clock cannot be set"
  WScript.Echo "set to:     " & Shown(moment)
Else
  WScript.Echo "the clock is right"
End If
serial.CloseTCP

' One byte of the clock as a number.
Function Part(position)
  Part = Asc(Mid(text, position, 1))
End Function

Function Shown(time)
  Shown = Year(time) & "-" & Two(Month(time)) & "-" & Two(Day(time)) & " " & Two(Hour(time)) & ":" & _
          Two(Minute(time)) & ":" & Two(Second(time))
End Function

Function Two(number)
  Two = Right("0" & number, 2)
End Function

' TCP ports above 32767 are passed as negative numbers.
Function SignedPort(port)
  SignedPort = CLng(port)
  If SignedPort > 32767 Then SignedPort = SignedPort - 65536
End Function

Sub Must(result, otherwise)
  If result = 0 Then Exit Sub
  WScript.Echo otherwise & ": result " & result
  WScript.Quit 1
End Sub
