// Delphi; not run by the tests, which have no Delphi.
// Lists text and delays of every preset that has a text:
//   Presets HOST PORT PASSWORD
program Presets;

{$APPTYPE CONSOLE}

uses
  System.SysUtils, System.Variants, System.Win.ComObj, Winapi.ActiveX;

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
  Number: Integer;
begin
  Serial := CreateOleObject('VelkCom.Serial');
  // The port is a signed 16-bit number.
  Must(Serial.OpenTCP(ParamStr(1), SmallInt(StrToInt(ParamStr(2))), ParamStr(3)), 'The link does not open');
  try
    for Number := 1 to LastPreset do
    begin
      Text := '';
      Records := '';
      Delay1 := 0;
      Delay2 := 0;
      Must(Serial.Preset('R', Number, Text, FirstRecord, Records, Delay1, Delay2), 'A preset cannot be read');
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
