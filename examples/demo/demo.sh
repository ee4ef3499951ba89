#!/usr/bin/env bash
# The demonstration behind ./run demo: a script host under Wine and the native tool read output 5 of a simulated
# controller, over TCP with a password, over a serial line in echo mode, and in fast mode.
set -euo pipefail
cd "$(dirname "$0")/../.."
. tests/support/noon.sh
. tests/support/programs.sh

say() { printf '\033[1m==>\033[0m %s\n' "$*"; }

component=build/windows-x64/bin/VelkCom.dll
velk=build/linux/bin/velk
work=build/demo
mkdir -p "$work"

export WINEPREFIX=$PWD/$work/wine WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY WAYLAND_DISPLAY
[ -e "$WINEPREFIX/system.reg" ] || {
  say "preparing Wine (once)"
  wineboot -i >/dev/null 2>&1
}
say "registering the component: regsvr32 VelkCom.dll"
wine regsvr32 /s "$component"

say "starting a simulated controller: TCP with password, serial lines in echo and fast mode"
trap 'kill "${simulator:-}" 2>/dev/null' EXIT
start_simulator build/linux/bin/velk-sim --tcp 0 --password 1234 --echo --fast --for 600
sed -n 's/^/    /p' "$said"
ln -sfn "$echo_line" "$WINEPREFIX/dosdevices/com1"
ln -sfn "$fast_line" "$WINEPREFIX/dosdevices/com2"

script() { (cd examples/demo && wine cscript.exe //nologo output.vbs 5 "$@" 2>/dev/null | tr -d '\r'); }

say "VBScript, TCP: output.vbs 5 tcp 127.0.0.1 $port_q 1234"
script tcp 127.0.0.1 "$port_q" 1234
say "VBScript, serial line in echo mode: output.vbs 5 com 1 echo"
script com 1 echo
say "VBScript, serial line in fast mode: output.vbs 5 com 2 fast"
script com 2 fast

native() { "$velk" call "$@" Ctl_Param R 5 "" | sed 's/^/    /'; }

say "velk, TCP"
native --tcp "127.0.0.1:$port_q" --password 1234
say "velk, serial line in echo mode"
native --serial "$echo_line"
say "velk, serial line in fast mode"
native --serial "$fast_line" --fast

say "to look at it: build/linux/bin/velk-sim --tcp 8445 --web 8080, then open http://127.0.0.1:8080/ in a browser"
