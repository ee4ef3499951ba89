@echo off
rem A console in which velk and velk-sim can be called by name.
title VelkCom tools
if "%PROCESSOR_ARCHITECTURE%"=="x86" if not defined PROCESSOR_ARCHITEW6432 goto narrow
set "PATH=%~dp0x64;%PATH%"
goto ready
:narrow
set "PATH=%~dp0x86;%PATH%"
:ready
cd /d "%USERPROFILE%"
echo velk --help lists the commands, velk-sim --help what the simulated controller can do.
echo The documents: "%~dp0docs\getting-started-windows.html"
"%COMSPEC%" /k
