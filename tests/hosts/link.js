// Reads a simulated controller over one link from JScript. Prints one line for each check.
// Arguments: "tcp" port password kind, or "com" port "echo" or "fast".

var failures = 0;
var serial = new ActiveXObject("VelkCom.Serial");
var words = WScript.Arguments;
var overTcp = words(0) === "tcp";
var port = Number(words(1));
var label = "JScript " + words(words.length - 1) + ": ";

function check(name, got, expected) {
  if (got === expected) {
    WScript.Echo("ok " + label + name);
  } else {
    ++failures;
    WScript.Echo("FAILED " + label + name + ": got [" + got + "], expected [" + expected + "]");
  }
}

function open() {
  if (!overTcp) return serial.OpenCom(port, 9600, words(2) === "fast");
  return serial.OpenTCP("127.0.0.1", port > 32767 ? port - 65536 : port, words(2));
}

check("open", open(), 0);
if (overTcp) check("kind", serial.SoortETH, words(3));
var reply = serial.ReadCom(1, 5, 1, "V");
check("length of the reply", reply.length, 2);
check("status", reply.charCodeAt(0), 0);
check("mode number", serial.ModeToNr(serial.ModeToStr(reply.charCodeAt(1), 5)), 5);
check("close", overTcp ? serial.CloseTCP() : serial.CloseCom(), 0);

WScript.Echo("done");
WScript.Quit(failures);
