@echo off
rem Registers the automation object of Norvane for all users of this machine; run it as administrator. With /u it takes
rem that back. A user's spreadsheet loads the add-in when that user has opened it once (see "Start here.html").
setlocal
set "module=%~dp0..\Norvane.XLL"
for %%F in ("%module%") do set "module=%%~fF"
if not exist "%module%" goto missing
if /i "%~1"=="/u" goto remove
regsvr32 /s "%module%"
if errorlevel 1 goto refused
echo Registered for all users: %module%
exit /b 0

:remove
regsvr32 /s /u "%module%"
if errorlevel 1 goto refused
echo Removed for all users: %module%
exit /b 0

:missing
echo Norvane.XLL is not in the folder above this script: unpack the whole zip first.
exit /b 2
:refused
echo That did not work. Run this as administrator: right button, "Run as administrator".
exit /b 1
