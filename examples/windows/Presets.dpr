// Delphi, and Free Pascal in its Delphi mode, with which the tests run it.
// Lists text and delays of every preset that has a text:
//   Presets HOST PORT PASSWORD
program Presets;

{$APPTYPE CONSOLE}

uses
  SysUtils, Variants, ComObj, ActiveX;

const
  LastPreset = 92;
  FirstRecord = 3; // asks for one record only: this program shows none

procedure Must(Result: Integer; const Action: string);
begin
  if Result <> 0 then
    raise Exception.CreateFmt('%s: result %d', [Action, Result]);
end;

procedure List;
var
  Serial, Text, Records, Delay1, Delay2: OleVariant; // variables are passed by reference
  Host, Password: string; // what a function returns goes into a variable first
  Port: SmallInt; // a TCP port above 32767 is passed as a negative number
  Number: Integer;
begin
  Host := ParamStr(1);
  Port := SmallInt(StrToInt(ParamStr(2)));
  Password := ParamStr(3);
  Serial := CreateOleObject('VelkCom.Serial');
  Must(Serial.OpenTCP(Host, Port, Password), 'The link does not open');
  try
    for Number := 1 to LastPreset do
    begin
      Text := '';
      Records := '';
      Delay1 := 0;
      Delay2 := 0;
      // Free Pascal does not take a literal of one character for a text.
      Must(Serial.Preset(WideString('R'), Number, Text, FirstRecord, Records, Delay1, Delay2),
        'A preset cannot be read');
      if Trim(StringReplace(VarToStr(Text), #255, '', [rfReplaceAll])) <> '' then
        Writeln(Format('%2d  %s  delays %d, %d', [Number, VarToStr(Text), Integer(Delay1), Integer(Delay2)]));
    end;
  finally
    Serial.CloseTCP;
  end;
end;

begin
  CoInitialize(nil);
  try
    List;
  except
    on E: Exception do
    begin
      Writeln(E.Message);
      ExitCode := 1;
    end;
  end;
  CoUninitialize;
end.
