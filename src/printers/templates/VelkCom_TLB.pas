// Printed from VelkCom's method table and its comments; see CONTRIBUTING.md.
// @help@.
//
// Early-bound declarations for Delphi and Free Pascal:
//
//     Serial := CoSerial.Create;
//     Result := Serial.OpenCom(3, 9600, False);
//
// A WideString carries bytes: one character each, 0 to 255. All arguments are given; what stands for one that another
// language leaves out is told beside each method. Methods that raise a run-time error raise EOleException, whose
// ErrorCode is $800A0000 plus the error's number.
unit VelkCom_TLB;

{$IFDEF FPC}{$MODE DELPHI}{$ENDIF}

interface

uses
  ActiveX, ComObj;

const
  LIBID_@library@: TGUID = '{@libraryId@}';
  DIID_@interfaceName@: TGUID = '{@interfaceId@}';
  CLASS_Serial: TGUID = '{@classId@}';

  // What a result byte says. Any other is a status that the controller gave.
@results@

  // The output modes by their numbers, named by the codes that Ctl_Param takes. A stored 4 is RO or DI.
@modes@

type
  // @class@
  @interfaceName@ = dispinterface
    ['{@interfaceId@}']
@methods@
  end;

  CoSerial = class
    // The component, as it is registered.
    class function Create: @interfaceName@;
  end;

implementation

class function CoSerial.Create: @interfaceName@;
begin
  Result := CreateComObject(CLASS_Serial) as @interfaceName@;
end;

end.
