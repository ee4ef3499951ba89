// Delphi and Free Pascal, early bound: lists the outputs that are in use, with the declarations of VelkCom_TLB.pas.
//   Outputs HOST PORT PASSWORD
// Build: dcc32 -U..\bindings -NSSystem;System.Win;Winapi Outputs.dpr (before XE2 without -NS),
// or fpc -Mdelphi -Fu..\bindings Outputs.dpr
program Outputs;

{$APPTYPE CONSOLE}

uses
  SysUtils, ActiveX, ComObj, VelkCom_TLB;

const
  LastOutput = 99;

function ListOutputs(const Serial: _Serial): Byte;
var
  Number: Integer;
  Mode, Items: WideString;
  Count: Smallint;
begin
  Result := ResultSuccess;
  for Number := 1 to LastOutput do
  begin
    Mode := '';
    Items := '';
    Count := 255; // all
    Result := Serial.Ctl_Param('R', Number, Mode, Items, Count, 0);
    if Result = ResultBadMode then Continue; // not in use
    if Result <> ResultSuccess then Exit;
    WriteLn('output ', Number, ': ', Mode, ', ', Count, ' items');
  end;
  Result := ResultSuccess;
end;

function Run: Byte;
var
  Serial: _Serial;
  Password: WideString;
begin
  Serial := CoSerial.Create;
  Password := WideString(ParamStr(3));
  // The port is a signed 16-bit number.
  Result := Serial.OpenTCP(WideString(ParamStr(1)), Smallint(StrToInt(ParamStr(2))), Password, 2);
  if Result = ResultSuccess then Result := ListOutputs(Serial);
  Serial.CloseTCP;
  if Result <> ResultSuccess then WriteLn('Outputs: result ', Result);
end;

begin
  if ParamCount <> 3 then
  begin
    WriteLn('usage: Outputs HOST PORT PASSWORD');
    Halt(2);
  end;
  OleCheck(CoInitialize(nil));
  try
    if Run <> ResultSuccess then ExitCode := 1;
  finally
    CoUninitialize;
  end;
end.
