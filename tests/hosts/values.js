// Value helpers, properties and errors, as a JScript host uses them. Prints one line for each check.

var failures = 0;
var serial = new ActiveXObject("VelkCom.Serial");

function check(name, got, expected) {
  if (got === expected) {
    WScript.Echo("ok " + name);
  } else {
    ++failures;
    WScript.Echo("FAILED " + name + ": got " + typeof got + " [" + got + "], expected [" + expected + "]");
  }
}

function checkError(name, number, action) {
  var caught = null;
  try {
    action();
  } catch (error) {
    caught = error;
  }
  check(name, caught === null ? "nothing" : caught.number & 0xFFFF, number);
  check(name + ": description", caught !== null && caught.message.length > 0, true);
}

check("an integer", serial.DECtoBCD(59), 89);
check("a fraction", serial.DECtoBCD(58.6), 89);
check("a text", serial.DECtoBCD("59"), 89);
check("a truth value", serial.IfSetBit(64, 6), true);
check("a text result", serial.LdZr(5, 2), "05");
check("an empty result", typeof serial.WhatBit(0), "undefined");
check("an argument left out", serial.OpenTCP("127.0.0.1", 1), 252);
check("close", serial.CloseTCP(), 0);

serial.SerAddress = 99;
check("a property", serial.SerAddress, 99);
serial.NoEcho = 1;
check("a truth property", serial.NoEcho, true);

var all = "";
for (var code = 0; code < 256; ++code) all += String.fromCharCode(code);
serial.SoortETH = all;
check("256 bytes in a text", serial.SoortETH, all);

checkError("overflow", 6, function () { serial.DECtoBCD(160); });
checkError("port not open", 8018, function () { serial.TranCeiv(32, 5, 1, ""); });
checkError("a character that is no byte", 5, function () { serial.SoortETH = "\u4E2D"; });

WScript.Echo("done");
WScript.Quit(failures);
