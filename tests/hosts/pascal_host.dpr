// What Free Pascal makes of the component: late bound, and through a dispinterface by dispatch ids. Prints one line
// for each check. Arguments: "tcp" port password kind, or "com" port "echo" or "fast".
program pascal_host;

{$APPTYPE CONSOLE}

uses
  SysUtils, Math, Variants, ComObj, ActiveX;

type
  ISerial = dispinterface
    ['{9CFAE593-9198-4D82-A6D5-ADC2BBE2EB02}']
    property SerAddress: Byte dispid 2;
    property SoortETH: WideString dispid 5;
    function ReadCom(AtlBytes, DPHxram, DPLxram: Byte; const Richting: WideString): WideString; dispid 16;
    function DECtoBCD(Getal: Byte): Byte; dispid 21;
    function IfSetBit(Bytte, Bitnr: Byte): WordBool; dispid 22;
    function LdZr(Getal: OleVariant; Lengte: Byte): OleVariant; dispid 23;
    function Ctl_Param(const ReadOrWrite: WideString; Address: Byte; var Mode, Parameters: WideString;
      var Aantal: SmallInt; Offset: Byte): Byte; dispid 32;
    function Ctl_Soft(const ReadOrWrite: WideString; SourceAdr, SourceSubAdr: Byte; var DestAdr: Byte;
      var INofOut: WideString; var Parameters1, Parameters2: Byte; var HighFlank, LowFlank: WordBool): Byte; dispid 41;
    function ConvertSim(var Data: WideString): WideString; dispid 67;
  end;

const
  Overflow = 'EOleException 800A0006 VelkCom.Serial: A number does not fit the range of its type.';
  NotOpen = 'EOleException 800A1F52 VelkCom.Serial: The serial port is not open: call OpenCom first.';
  NoNumber = 'EOleException 800A000D VelkCom.Serial: A text cannot be read as a number.';
  NoMethod = 'EOleError Method ''DECtoBC'' is not supported by automation object';
  Errors: array [1..10] of string = (Overflow, NotOpen, 'EOleSysError 80020005', 'EOleSysError 8002000A',
    'EOleSysError 8002000A', 'EOleSysError 8002000E', NoMethod, Overflow, NotOpen, NoNumber);
  R: WideString = 'R'; // a literal of one character is no text to this compiler
  W: WideString = 'W';
  V: WideString = 'V';

var
  Serial, AVariant: OleVariant;
  Typed: ISerial;
  Failures, AnInteger: Integer;
  AByte, First, Second: Byte;
  AShortInt: ShortInt;
  ASmallInt: SmallInt;
  AWord: Word;
  ALongWord: LongWord;
  AnInt64: Int64;
  AUInt64: UInt64;
  ASingle: Single;
  ADouble: Double;
  ACurrency: Currency;
  ADate: TDateTime;
  Rising, Falling: WordBool;
  AString: AnsiString;
  AUnicodeString: UnicodeString;
  Text, Items: WideString;

procedure Check(const Name, Got, Expected: string);
begin
  if Got = Expected then
    Writeln('ok Pascal ', ParamStr(ParamCount), ': ', Name)
  else
  begin
    Inc(Failures);
    Writeln('FAILED Pascal ', ParamStr(ParamCount), ': ', Name, ': got [', Got, '], expected [', Expected, ']');
  end;
end;

// Type and value: "Byte 89".
function Told(const Value: OleVariant): string;
begin
  Result := VarTypeAsText(VarType(Value)) + ' ' + VarToStr(Value);
end;

procedure Done(const Name: string; Result: Integer);
begin
  Check(Name, IntToStr(Result), '0');
end;

function Hexed(const Bytes: WideString): string;
var
  C: WideChar;
begin
  Result := '';
  for C in Bytes do
    Result := Result + IntToHex(Ord(C), 2);
end;

function Bytes(Lowest, Highest: Integer): WideString;
var
  I: Integer;
begin
  Result := '';
  for I := Lowest to Highest do
    Result := Result + WideChar(I);
end;

// Arguments and results as they are written in a program.
procedure CheckValues;
begin
  AnInteger := 59;
  AString := ' 59 ';
  Check('a variable', Told(Serial.DECtoBCD(AnInteger)), 'Byte 89');
  Check('a text', Told(Serial.dectobcd(AString)), 'Byte 89');
  Check('by dispatch id', IntToStr(Typed.DECtoBCD(59)), '89');
  Check('arguments by name', Told(Serial.LdZr(Lengte := 5, Getal := 7)), 'OleStr 00007');
  Check('a variant by dispatch id', Told(Typed.LdZr(0.5, 5)), 'OleStr 000.5');
  Check('truth values', Told(Serial.IfSetBit(64, 6)) + ' ' + Told(Typed.IfSetBit(64, 5)), 'Boolean True Boolean False');
  Check('no value', Told(Serial.WhatBit(0)), 'Empty ');
  Serial.SerAddress := '17';
  Check('a property', IntToStr(Typed.SerAddress), '17');
  Typed.SerAddress := 2;
  Check('  set by dispatch id', Told(Serial.SerAddress), 'Byte 2');
  Text := Bytes(0, 255);
  Serial.SoortETH := Text;
  Check('256 bytes in a text', Hexed(Typed.SoortETH), Hexed(Text));
end;

procedure Fail(Number: Integer);
begin
  case Number of
    1: AVariant := Serial.DECtoBCD(160);
    2: AVariant := Serial.ReadCom(1, 5, 1, V);
    3: AVariant := Serial.DECtoBCD(Text);
    4: AVariant := Serial.DECtoBCD(NaN);
    5: AVariant := Serial.DECtoBCD(Infinity);
    6: AVariant := Serial.DECtoBCD(1, 2);
    7: AVariant := Serial.DECtoBC(1);
    8: AVariant := Typed.DECtoBCD(160);
    9: AVariant := Typed.ReadCom(1, 5, 1, V);
    10: AVariant := Typed.ConvertSim(Text);
  end;
end;

procedure CheckErrors;
var
  Number: Integer;
  Got: string;
begin
  Text := #$12#$59'xyz'#$1A#$01'xyz';
  for Number := Low(Errors) to High(Errors) do
  begin
    Got := 'nothing';
    try
      Fail(Number);
    except
      on E: EOleException do
        Got := 'EOleException ' + IntToHex(E.ErrorCode, 8) + ' ' + E.Source + ': ' + E.Message;
      on E: EOleSysError do
        Got := 'EOleSysError ' + IntToHex(E.ErrorCode, 8);
      on E: Exception do
        Got := E.ClassName + ' ' + E.Message;
    end;
    Check('error ' + IntToStr(Number), Got, Errors[Number]);
  end;
  Check('  what was done before the last', Hexed(Text), '0C3B78797A1A0178797A');
end;

// A variable of each type takes what comes back: of preset 2 the delays of 10 and 40, and 255 since it is simulated.
procedure CheckReferences;
begin
  AVariant := '';
  Done('Preset', Serial.Preset(R, 2, AString, 3, Text, AShortInt, AByte, ASmallInt));
  Check('  its parts', AString + Hexed(Text), 'Evening         FF020000');
  Done('Preset', Serial.Preset(R, 2, AUnicodeString, 5, AVariant, AWord, AnInteger, ALongWord));
  Check('  its parts', string(AUnicodeString) + Hexed(AVariant), 'Evening         FF020000000000001E020000');
  Done('Preset', Serial.Preset(R, 2, AVariant, 3, Text, AnInt64, AUInt64, ASingle));
  Check('  its text', Told(AVariant), 'OleStr Evening         ');
  Done('Preset', Serial.Preset(R, 2, Text, 3, Items, ADouble, ACurrency, ADate));
  Check('  numbers', Format('%d %d %d, %d %d %d, %d %d %g, %g %g %g', [AShortInt, AByte, ASmallInt, AWord, AnInteger,
    ALongWord, AnInt64, AUInt64, ASingle, ADouble, ACurrency, ADate]),
    '10 40 255, 10 40 255, 10 40 255, 10 40 255');
  Check('  in BCD', string(Serial.DECtoBCD(AShortInt)) + string(Serial.DECtoBCD(ACurrency)) +
    string(Serial.DECtoBCD(AUInt64)) + string(Serial.DECtoBCD(AnInt64)), '16646416');
  AVariant := Unassigned;
  AString := '0';
  Done('Preset', Serial.Preset(R, 2, Text, 3, Items, Rising, AString, AVariant));
  Check('  its numbers', BoolToStr(Rising, True) + ' ' + AString + ' ' + Told(AVariant), 'True 40 Byte 255');
end;

procedure CheckOutputs;
begin
  Done('Ctl_Param without the rest', Serial.Ctl_Param(R, 5, Text));
  Check('  mode', string(Text), 'T1');
  AnInteger := 255;
  Done('Ctl_Param without the items', Serial.Ctl_Param(R, 5, Text, , AnInteger));
  Check('  count', IntToStr(AnInteger), '12');
  Done('Ctl_Param', Typed.Ctl_Param(R, 5, Text, Items, ASmallInt, 0));
  Check('  its parts', Format('%s %s %d', [Text, Hexed(Items), ASmallInt]), 'T1 0501031E4D024D3C53045303 12');
  Done('Ctl_Param W', Typed.Ctl_Param(W, 60, Text, Items, ASmallInt, 0));
  AByte := 1;
  Items := WideChar(200);
  Done('  one item', Serial.Ctl_Param(W, 60, Text, Items, AByte, 3));
  Done('Ctl_Param', Typed.Ctl_Param(R, 60, Text, Items, ASmallInt, 0));
  Check('  its parts', Hexed(Items), '050103C84D024D3C53045303');
end;

procedure CheckSoftLinks;
begin
  AByte := 7;
  Text := 'O';
  First := 3;
  Second := 10;
  Done('Ctl_Soft W', Typed.Ctl_Soft(W, 50, 2, AByte, Text, First, Second, Rising, Falling));
  Done('Ctl_Soft R', Serial.Ctl_Soft(R, 50, 2, AnInteger, Items, AWord, ADouble, Falling, Rising));
  Check('  its parts', Format('%d%s %d %g %d %d', [AnInteger, Items, AWord, ADouble, SmallInt(Falling),
    SmallInt(Rising)]), '7O 3 10 -1 0');
  Done('  the other edge', Serial.Ctl_Soft(W, 50, 2, 7, Text, 4, 0, False, True));
  Done('Ctl_Soft R', Typed.Ctl_Soft(R, 50, 2, AByte, Text, First, Second, Falling, Rising));
  Check('  its parts', Format('%d%s %d %d %d %d', [AByte, Text, First, Second, SmallInt(Falling), SmallInt(Rising)]),
    '7O 4 0 0 -1');
end;

// Each reply begins with the result.
procedure CheckBytes(Lowest: Integer; const Expected: string);
begin
  Text := Bytes(Lowest, Lowest + 15);
  Items := Serial.WriteCom(16, 5, 200, V, Text);
  Check('writing bytes', Hexed(Items[1]), '00');
  Check('  reading them', Hexed(Typed.ReadCom(16, 5, 200, V)), Expected);
end;

procedure CheckAll;
var
  Port: SmallInt;
begin
  Serial := CreateOleObject('VelkCom.Serial');
  Typed := IDispatch(Serial) as ISerial;
  CheckValues;
  CheckErrors;
  Port := SmallInt(StrToInt(ParamStr(2))); // negative above 32767
  AString := ParamStr(3);
  if ParamStr(1) = 'com' then
    Done('open', Serial.OpenCom(Port, , AString = 'fast')) // the rate is left out
  else
    Done('open', Serial.OpenTCP('127.0.0.1', Port, AString));
  CheckReferences;
  CheckOutputs;
  CheckSoftLinks;
  CheckBytes(128, '00808182838485868788898A8B8C8D8E8F');
  CheckBytes(144, '00909192939495969798999A9B9C9D9E9F');
  CheckBytes(240, '00F0F1F2F3F4F5F6F7F8F9FAFBFCFDFEFF');
  if ParamStr(1) = 'com' then
    Done('close', Serial.CloseCom)
  else
    Done('close', Serial.CloseTCP);
  Writeln('done');
end;

begin
  CoInitialize(nil);
  try
    CheckAll;
  except
    on E: Exception do
      Check('the rest', E.ClassName + ' ' + E.Message, 'done');
  end;
  Typed := nil;
  Serial := Unassigned;
  CoUninitialize;
  ExitCode := Failures;
end.
