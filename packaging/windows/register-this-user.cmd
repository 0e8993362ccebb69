@echo off
rem Registers Norvane for the user who runs this, without administrator rights: the automation object for scripts and
rem VBA, and the add-in, which Excel then loads when it starts. With /u it takes both back.
setlocal
set "module=%~dp0..\Norvane.XLL"
for %%F in ("%module%") do set "module=%%~fF"
set "options=HKCU\Software\Microsoft\Office\16.0\Excel\Options"
if not exist "%module%" goto missing

rem Excel opens what the values OPEN, OPEN1, OPEN2, ... name, up to the first gap. One of an older folder is replaced.
set number=
:next
reg query "%options%" /v OPEN%number% >nul 2>&1
if errorlevel 1 goto gap
reg query "%options%" /v OPEN%number% | find "\Norvane.XLL" >nul
if not errorlevel 1 goto found
set /a number=number+1
goto next

:gap
if /i "%~1"=="/u" goto remove
goto enter

:found
if /i "%~1"=="/u" goto leave
:enter
reg add "%options%" /v OPEN%number% /t REG_SZ /d "/R \"%module%\"" /f >nul
if errorlevel 1 goto refused
regsvr32 /s /n /i:user "%module%"
if errorlevel 1 goto unregistered
echo Registered for this user: %module%
exit /b 0

rem The values behind it move up, so that no gap hides them.
:leave
reg delete "%options%" /v OPEN%number% /f >nul
set last=%number%
:shift
set /a next=last+1
reg query "%options%" /v OPEN%next% >nul 2>&1
if errorlevel 1 goto remove
for /f "tokens=2,*" %%A in ('reg query "%options%" /v OPEN%next%') do set "value=%%B"
reg add "%options%" /v OPEN%last% /t REG_SZ /d "%value:"=\"%" /f >nul
reg delete "%options%" /v OPEN%next% /f >nul
set last=%next%
goto shift

:remove
regsvr32 /s /u /n /i:user "%module%"
echo Removed for this user: %module%
exit /b 0

:missing
echo Norvane.XLL is not in the folder above this script: unpack the whole zip first.
exit /b 2
:refused
echo The add-in could not be entered for Excel.
exit /b 1
:unregistered
echo The automation object could not be registered.
exit /b 1
