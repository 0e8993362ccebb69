' Compressibility and density of a natural gas by AGA-8, through the automation object.
' Register once: regsvr32 Norvane.XLL   Then: cscript //nologo compressibility.vbs
Option Explicit
Dim norvane, gas, status, z, massDensity, molarDensity, molarMass, range

' Methane, nitrogen, carbon dioxide, ethane, propane, water, hydrogen sulfide, hydrogen, carbon monoxide, oxygen,
' i-butane, n-butane, i-pentane, n-pentane, n-hexane, n-heptane, n-octane, n-nonane, n-decane, helium, argon,
' neo-pentane.
gas = Array(0.965, 0.003, 0.006, 0.018, 0.0045, 0, 0, 0, 0, 0, 0.001, 0.001, 0.0005, 0.0003, 0.0007, _
            0, 0, 0, 0, 0, 0, 0)

Set norvane = CreateObject("Norvane.Functions")
status = norvane.AGA8_M(60, 6.85, gas, 1, 1, z, massDensity, molarDensity, molarMass, range)
If status <> 0 Then
  WScript.Echo "The calculation ended with status " & status
  WScript.Quit 1
End If
WScript.Echo "Compressibility " & z & ", density " & massDensity & " kg/m3"
