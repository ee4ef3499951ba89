; The setup program: both components side by side, for everybody or for the current user.
; Command line: /S silent, /AllUsers or /CurrentUser, /Path=yes or /Path=no, /D=FOLDER (last). Exit code 0; 2 when
; nothing was installed, 3 when all was but for the search path.
; Defines: VERSION, COPYRIGHT, TREE (the files), REMOVE (script lines that delete them), PATH_TOOL (the program that
; changes the search path), OUTPUT.

Unicode true
; The uninstaller reads no switches.
!pragma warning disable 6010
; The stub of 64-bit systems, on which both components have their place; 32-bit systems take the zip.
Target amd64-unicode
SetCompressor /SOLID lzma

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\VelkCom"
!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_USE_PROGRAMFILES64
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_INSTALLMODE_INSTDIR "VelkCom"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_KEY "${UNINSTALL_KEY}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_VALUENAME "InstallLocation"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_KEY "${UNINSTALL_KEY}"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_VALUENAME "InstallLocation"
!include MultiUser.nsh
!include MUI2.nsh
!include FileFunc.nsh
!include Sections.nsh

Name "VelkCom ${VERSION}"
OutFile "${OUTPUT}"
BrandingText " "
VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "VelkCom"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "Setup of VelkCom"
VIAddVersionKey LegalCopyright "${COPYRIGHT}"

; The licence asks for no consent, so the page that shows it has a button to go on and none to agree.
!define MUI_LICENSEPAGE_TEXT_BOTTOM "Everybody may use, copy and change VelkCom."
!define MUI_LICENSEPAGE_BUTTON "&Next >"
!insertmacro MUI_PAGE_LICENSE "${TREE}/LICENSE.txt"
!insertmacro MULTIUSER_PAGE_INSTALLMODE
!define MUI_COMPONENTSPAGE_NODESC
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

Var Owner ; whose search path and Start menu: user or everybody
Var Audience ; the switches of regsvr32 for everybody or for the current user
Var Code
Var ForEverybody ; the uninstaller: whether what lies here is the installation for everybody
Var ForThisUser

!macro AUDIENCE
  ${If} $MultiUser.InstallMode == "CurrentUser"
    StrCpy $Audience "/n /i:user"
    StrCpy $Owner "user"
  ${Else}
    StrCpy $Audience ""
    StrCpy $Owner "everybody"
  ${EndIf}
!macroend

; Each component is registered by the program of its own bitness. A system without the 32-bit one cannot run
; 32-bit hosts either.
!macro REGSVR SWITCHES
  ExecWait '"$SYSDIR\regsvr32.exe" /s ${SWITCHES} $Audience "$INSTDIR\x64\VelkCom.dll"' $Code
  ${If} ${FileExists} "$WINDIR\SysWOW64\regsvr32.exe"
  ${AndIf} $Code == 0
    ExecWait '"$WINDIR\SysWOW64\regsvr32.exe" /s ${SWITCHES} $Audience "$INSTDIR\x86\VelkCom.dll"' $Code
  ${EndIf}
!macroend

; Texts of this program end after 1023 characters, which a search path may well exceed: another program reads and
; writes it. Code becomes 0 (changed), 1 (nothing to change), 2 or text (failed).
!macro CHANGE_PATH ACTION FOLDER
  InitPluginsDir
  File "/oname=$PLUGINSDIR\setup-path.exe" "${PATH_TOOL}"
  ExecWait '"$PLUGINSDIR\setup-path.exe" ${ACTION} $Owner "${FOLDER}"' $Code
!macroend

!macro REMOVE_FILES
  SetOutPath "$TEMP"
  !include "${REMOVE}"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
!macroend

; Sets RESULT to 1 when the installation that ROOT records lies in this folder, else to 0. Full paths have no
; short names.
!macro LIES_HERE ROOT RESULT
  ReadRegStr $0 ${ROOT} "${UNINSTALL_KEY}" "InstallLocation"
  GetFullPathName $0 $0
  GetFullPathName $1 $INSTDIR
  StrCpy ${RESULT} 0
  ${If} $0 != ""
  ${AndIf} $0 == $1
    StrCpy ${RESULT} 1
  ${EndIf}
!macroend

!macro REMOVE_RECORD
  !insertmacro AUDIENCE
  !insertmacro REGSVR "/u"
  ; Only what this setup has put there.
  ReadRegStr $0 SHCTX "${UNINSTALL_KEY}" "OnPath"
  ${If} $0 != ""
    !insertmacro CHANGE_PATH remove $0
  ${EndIf}
  Delete "$SMPROGRAMS\VelkCom\VelkCom tools prompt.lnk"
  Delete "$SMPROGRAMS\VelkCom\VelkCom documents.lnk"
  RMDir "$SMPROGRAMS\VelkCom"
  DeleteRegKey SHCTX "${UNINSTALL_KEY}"
!macroend

; What lies in this folder is removed, and nothing else: neither the rights nor the switches decide for whom it
; was installed, as there may be another installation for the others.
Function un.onInit
  !insertmacro LIES_HERE HKLM $ForEverybody
  !insertmacro LIES_HERE HKCU $ForThisUser
  UserInfo::GetAccountType
  Pop $MultiUser.Privileges
  ${If} $ForEverybody == 1
  ${AndIf} $MultiUser.Privileges != "Admin"
    MessageBox MB_OK|MB_ICONSTOP "VelkCom is installed here for everybody: only an administrator can remove it." /SD IDOK
    SetErrorLevel 2
    Quit
  ${EndIf}
FunctionEnd

; An earlier version may have files that this one has not.
Function removeEarlierVersion
  ReadRegStr $0 SHCTX "${UNINSTALL_KEY}" "InstallLocation"
  ${If} $0 != ""
  ${AndIf} ${FileExists} "$0\uninstall.exe"
    ExecWait '"$0\uninstall.exe" /S /$MultiUser.InstallMode _?=$0'
    Delete "$0\uninstall.exe"
    RMDir "$0"
  ${EndIf}
FunctionEnd

Section "VelkCom"
  SectionIn RO
  ; Before anything is changed.
  ClearErrors
  CreateDirectory "$INSTDIR"
  GetTempFileName $0 "$INSTDIR"
  ${If} ${Errors}
    SetErrorLevel 2
    Abort "The folder $INSTDIR cannot be made, or nothing can be written there."
  ${EndIf}
  Delete $0
  Call removeEarlierVersion
  SetOutPath "$INSTDIR"
  File /r "${TREE}/*"
  !insertmacro AUDIENCE
  !insertmacro REGSVR ""
  ${If} $Code != 0
    StrCpy $1 $Code
    !insertmacro REMOVE_RECORD
    !insertmacro REMOVE_FILES
    SetErrorLevel 2
    Abort "The component cannot be registered: regsvr32 ends with $1."
  ${EndIf}

  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "VelkCom"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "Publisher" "VelkCom"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S /$MultiUser.InstallMode'
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoRepair" 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "EstimatedSize" $0

  CreateDirectory "$SMPROGRAMS\VelkCom"
  CreateShortCut "$SMPROGRAMS\VelkCom\VelkCom tools prompt.lnk" "$INSTDIR\tools.cmd" "" "$SYSDIR\cmd.exe" 0 \
    SW_SHOWNORMAL "" "A console in which velk and velk-sim can be called by name"
  CreateShortCut "$SMPROGRAMS\VelkCom\VelkCom documents.lnk" "$INSTDIR\docs\getting-started-windows.html"
SectionEnd

Section /o "velk on the search path (PATH)" OnPath
  !insertmacro CHANGE_PATH add "$INSTDIR\x64"
  ${If} $Code == 0
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "OnPath" "$INSTDIR\x64"
  ${ElseIf} $Code != 1
    SetErrorLevel 3
    MessageBox MB_OK|MB_ICONEXCLAMATION "All is installed, but the search path could not be changed." /SD IDOK
  ${EndIf}
SectionEnd

Function .onInit
  ; The choice of the audience sets the folder too, but one from the command line counts.
  StrCpy $0 $INSTDIR
  ; One that cannot be, below a file or on no drive, has been dropped silently together with its switch: only the
  ; system still has the whole command line.
  System::Call "kernel32::GetCommandLine() t .r1"
  ${StrStr} $2 $1 " /D="
  ${If} $0 == ""
  ${AndIf} $2 != ""
    MessageBox MB_OK|MB_ICONSTOP "There can be no such folder: $2" /SD IDOK
    SetErrorLevel 2
    Quit
  ${EndIf}
  !insertmacro MULTIUSER_INIT
  ${If} $0 != ""
    StrCpy $INSTDIR $0
  ${EndIf}
  ; Without a word on it the search path stays as the last setup has left it.
  ReadRegStr $3 SHCTX "${UNINSTALL_KEY}" "OnPath"
  ${GetOptions} $1 "/Path=" $2
  ${If} $2 == ""
  ${AndIf} $3 != ""
    StrCpy $2 "yes"
  ${EndIf}
  ${If} $2 == "yes"
    !insertmacro SelectSection ${OnPath}
  ${EndIf}
FunctionEnd

Section Uninstall
  ${If} $ForEverybody == 1
    Call un.MultiUser.InstallMode.AllUsers
    !insertmacro REMOVE_RECORD
  ${EndIf}
  ${If} $ForThisUser == 1
    Call un.MultiUser.InstallMode.CurrentUser
    !insertmacro REMOVE_RECORD
  ${EndIf}
  !insertmacro REMOVE_FILES
SectionEnd
