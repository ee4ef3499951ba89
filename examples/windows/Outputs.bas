' VBA for Excel; not run by the tests, which have no Office.
' Fills the active sheet with output, mode and parameter items (in hexadecimal) of every output. Import this module
' and start ListOutputs.
Option Explicit
Const NotInUse = 111

Public Sub ListOutputs()
  Dim serial As Object, result As Byte, row As Long, output As Long, i As Long
  Dim mode As String, items As String, count As Integer
  Set serial = CreateObject("VelkCom.Serial")
  result = serial.OpenTCP(InputBox("Host name or address"), SignedPort(InputBox("TCP port")), InputBox("Password"))
  If result <> 0 Then
    MsgBox "The link does not open: result " & result
    Exit Sub
  End If

  For output = 1 To 99
    count = 255 ' all
    result = serial.Ctl_Param("R", output, mode, items, count)
    If result <> 0 And result <> NotInUse Then
      MsgBox "Output " & output & " cannot be read: result " & result
      Exit For
    End If
    If result = 0 Then
      row = row + 1
      ActiveSheet.Cells(row, 1).Value = output
      ActiveSheet.Cells(row, 2).Value = mode
      For i = 1 To Len(items)
        ActiveSheet.Cells(row, 2 + i).Value = "'" & Right("0" & Hex(AscW(Mid(items, i, 1))), 2)
      Next
    End If
  Next
  serial.CloseTCP
End Sub

' The port is an Integer: above 32767 it is passed as a negative number.
Private Function SignedPort(ByVal port As Long) As Integer
  If port > 32767 Then port = port - 65536
  SignedPort = port
End Function
