// Value helpers, properties, errors and a simulated controller over one link, as a JScript host uses them. Prints
// one line for each check.
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

function checkError(name, number, action) {
  try {
    action();
    check(name, "nothing", number);
  } catch (error) {
    check(name, error.number & 0xFFFF, number);
    check(name + ": description", error.message.length > 0, true);
  }
}

check("an argument left out", serial.OpenTCP("127.0.0.1", 1), 252);
serial.CloseTCP();
check("a fraction", serial.DECtoBCD(58.6), 89);
check("a truth value", serial.IfSetBit(64, 6), true);
check("an empty result", typeof serial.WhatBit(0), "undefined");
serial.NoEcho = 1;
check("a truth property", serial.NoEcho, true);

var all = "";
for (var code = 0; code < 256; ++code) all += String.fromCharCode(code);
serial.SoortETH = all;
check("256 bytes in a text", serial.SoortETH, all);

checkError("port not open", 8018, function () { serial.TranCeiv(32, 5, 1, ""); });
checkError("a character that is no byte", 5, function () { serial.SoortETH = "\u4E2D"; });

check("open", overTcp ? serial.OpenTCP("127.0.0.1", port > 32767 ? port - 65536 : port, words(2))
                      : serial.OpenCom(port, 9600, words(2) === "fast"), 0);
if (overTcp) check("kind", serial.SoortETH, words(3));
var reply = serial.ReadCom(1, 5, 1, "V");
check("length of the reply", reply.length, 2);
check("status", reply.charCodeAt(0), 0);
check("close", overTcp ? serial.CloseTCP() : serial.CloseCom(), 0);

WScript.Echo("done");
WScript.Quit(failures);
