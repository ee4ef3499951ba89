' Reads and writes a simulated controller over one link.

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

CloseLink
