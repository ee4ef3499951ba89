# PowerShell; not run by the tests, which have no PowerShell.
# Saves mode and parameter items of every output as a CSV file, for a spreadsheet or for comparing two states.
#   .\outputs.ps1 192.168.1.20 1000 1234 outputs.csv
param([string]$HostName, [int]$Port, [string]$Password, [string]$File)
$ErrorActionPreference = 'Stop'

$serial = New-Object -ComObject VelkCom.Serial
if ($Port -gt 32767) { $Port -= 65536 }  # the argument is a signed 16-bit number
$result = $serial.OpenTCP($HostName, $Port, [ref]$Password)
if ($result -ne 0) { throw "The link does not open: result $result" }

try {
  1..99 | ForEach-Object {
    [string]$mode = ''; [string]$items = ''; [int16]$count = 255
    $result = $serial.Ctl_Param('R', $_, [ref]$mode, [ref]$items, [ref]$count)
    if ($result -eq 111) { return }  # not in use
    if ($result -ne 0) { throw "Output $_ cannot be read: result $result" }
    $bytes = $items.ToCharArray() | ForEach-Object { '{0:X2}' -f [int]$_ }
    [pscustomobject]@{ Output = $_; Mode = $mode; Items = $bytes -join ' ' }
  } | Export-Csv -NoTypeInformation -Path $File
} finally {
  [void]$serial.CloseTCP()
}
