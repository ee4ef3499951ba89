// Reads a simulated controller over TCP from JScript. Prints one line for each check. Argument: the port of an
// interface of kind "S".

var failures = 0;
var serial = new ActiveXObject("VelkCom.Serial");
var port = Number(WScript.Arguments(0));

function check(name, got, expected) {
  if (got === expected) {
    WScript.Echo("ok script over TCP: " + name);
  } else {
    ++failures;
    WScript.Echo("FAILED script over TCP: " + name + ": got [" + got + "], expected [" + expected + "]");
  }
}

check("open", serial.OpenTCP("127.0.0.1", port > 32767 ? port - 65536 : port), 0);
check("kind", serial.SoortETH, "S");
var reply = serial.ReadCom(1, 5, 1, "V");
check("length of the reply", reply.length, 2);
check("status", reply.charCodeAt(0), 0);
check("mode number", serial.ModeToNr(serial.ModeToStr(reply.charCodeAt(1), 5)), 5);
check("close", serial.CloseTCP(), 0);

WScript.Echo("done");
WScript.Quit(failures);
