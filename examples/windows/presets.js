// JScript: lists the presets of a controller that have a text.
//   cscript //nologo presets.js HOST PORT PASSWORD
// JScript passes no variables by reference, so the texts are read from the controller's memory: 16 bytes at
// offset 40 of the page PRESET + 34. Other languages use the method Preset.

var words = WScript.Arguments;
var serial = new ActiveXObject("VelkCom.Serial");
var presets = 92, firstPage = 35, textOffset = 40, textLength = 16;

function fail(what, result) {
  WScript.Echo(what + ": result " + result);
  WScript.Quit(1);
}

// TCP ports above 32767 are passed as negative numbers.
var port = Number(words(1));
var result = serial.OpenTCP(words(0), port > 32767 ? port - 65536 : port, words(2));
if (result !== 0) fail("the link does not open", result);

for (var number = 1; number <= presets; ++number) {
  var reply = serial.ReadCom(textLength, firstPage + number - 1, textOffset, "V");
  // The first character is the status of the transaction, the others are the data.
  if (reply.charCodeAt(0) !== 0) fail("preset " + number + " cannot be read", reply.charCodeAt(0));
  var text = reply.substr(1);
  if (/[^ \u0000\u00FF]/.test(text)) WScript.Echo(number + ": " + text);
}
serial.CloseTCP();
