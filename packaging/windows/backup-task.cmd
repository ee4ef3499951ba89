@echo off
rem Has Windows save the configuration of a controller every night, and keep the last 30 that differ. Run it as the
rem user whose VELK_LINK names the controller (setx VELK_LINK "tcp://192.168.1.20:8445?password=1234").
rem The task's last result is 0, or 6 when nothing has changed. velk has to be found on the path.
if not exist "%LOCALAPPDATA%\VelkCom\backups" mkdir "%LOCALAPPDATA%\VelkCom\backups"
schtasks /Create /F /TN "VelkCom backup" /SC DAILY /ST 03:30 /TR "cmd /c velk backup --keep 30 --quiet \"%LOCALAPPDATA%\VelkCom\backups\""
