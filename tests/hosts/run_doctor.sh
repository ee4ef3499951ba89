#!/bin/sh
# Runs the doctor's check of the system under Wine: what it reports, and that it leaves nothing behind.
# Usage: run_doctor.sh BUILD_DIR
#   BUILD_DIR   a build with the preset windows-x64
#   VELK_SIM    the simulated controller; bin/velk-sim of the native build when not set
# Prints one line for each check and a closing line; ends with 1 when a check failed.

set -u
here=$(cd "$(dirname "$0")" && pwd)
. "$here/../support/noon.sh"
. "$here/../support/programs.sh"
. "$here/../support/checks.sh"
build=$(cd "${1:?usage: run_doctor.sh BUILD_DIR}" && pwd) || exit 2
work=$build/doctor
sim=${VELK_SIM:-$here/../../build/linux/bin/velk-sim}
folder="$work/house of Jürg/x64" # a blank and a letter that is not ASCII
export LC_ALL=C.UTF-8 WINEPREFIX="$work/prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY WAYLAND_DISPLAY
longest=600 # seconds that a check may take, which needs some twenty
lines=
simulator=

end() {
  [ -z "$simulator" ] || kill "$simulator"
  [ -z "$lines" ] || kill "$lines"
  wineserver -k >/dev/null 2>&1
}
trap end EXIT
trap 'exit 130' INT TERM

wine_run() { timeout -k 5 "$longest" wine "$@" 2>/dev/null </dev/null; }
doctor() { timeout -k 5 "$longest" wine "$folder/velk.exe" doctor "$@" 2>"$work/errors.txt" </dev/null | tr -d '\r'; }
ends_with() { # ends_with STATUS WORDS...: of the doctor
  wanted=$1
  shift
  timeout -k 5 "$longest" wine "$folder/velk.exe" doctor "$@" >"$work/said.txt" 2>&1 </dev/null
  status=$?
  cat "$work/said.txt"
  [ $status -eq "$wanted" ]
}

# Two serial ports whose lines are connected: COM5 and COM6.
connect_ports() {
  python3 -c '
import os, select, sys, tty
ends = [os.openpty() for _ in range(2)]
for number, (master, slave) in zip((5, 6), ends):
    tty.setraw(master)
    tty.setraw(slave)
    link = "%s/dosdevices/com%d" % (sys.argv[1], number)
    if os.path.lexists(link): os.unlink(link)
    os.symlink(os.ttyname(slave), link)
print("ready", flush=True)
other = {ends[0][0]: ends[1][0], ends[1][0]: ends[0][0]}
while True:
    for end in select.select(list(other), [], [])[0]: os.write(other[end], os.read(end, 4096))' "$WINEPREFIX" >"$work/lines.txt" &
  lines=$!
  wait_for "$work/lines.txt" ready
}

classes() { # classes FILE: what is registered for everybody and for this user
  for hive in HKLM HKCU; do
    rm -f "$work/classes.reg"
    wine_run reg export "$hive\\Software\\Classes" "$work/classes.reg" /y >/dev/null
    iconv -f utf-16 -t utf-8 "$work/classes.reg"
  done >"$work/$1"
}
left_nothing() { # the classes are as before, and so is the folder of the doctor's
  classes after.txt
  diff "$work/before.txt" "$work/after.txt" && ! find "$WINEPREFIX/drive_c/users" -name VelkCom | grep .
}
is_registered() { wine_run reg query 'HKLM\Software\Classes\VelkCom.Serial\CLSID'; }

# The clocks are real: on a busy machine one byte of many thousand comes too late for a line in echo mode.
full_report() {
  for _ in 1 2 3; do
    doctor --check --serial COM5,COM6 >"$work/report.txt"
    grep -qE '^failed .*(\[25[1-4]\]|\\xF[B-E])' "$work/report.txt" || return 0
  done
}

# The rows of the report, with N for what is measured.
rows() { sed -nE '/^(passed|failed|left out|[0-9]+ passed)/ { /^(passed +(waits|TCP)|left out +line)/ s/[0-9]+\.[0-9]+|[0-9]{2,5} us|client [0-9]+/N/g; p }' "$1"; }
expected_rows() {
  cat <<'ROWS'
passed    simulator: velk-sim.exe serves TCP on 127.0.0.1
passed    64-bit program without registration: its manifest names VelkCom, which it creates -- and it answers
left out  32-bit program without registration: its manifest names VelkCom, which it creates -- this system has no 32-bit script host
passed    registration for this user: regsvr32 of each bitness registers
left out  script hosts for this user: use it -- Wine does not look at what is registered for a user
passed    removal for this user: nothing stays in the registry
passed    registration for everybody: regsvr32 of each bitness registers
passed    64-bit VBScript for everybody, TCP kind Q: calls methods of every family -- 42 results
left out  32-bit VBScript for everybody, TCP kind Q: calls methods of every family -- this system has no 32-bit script host
passed    64-bit VBScript for everybody, TCP kind S: calls methods of every family -- 42 results
left out  32-bit VBScript for everybody, TCP kind S: calls methods of every family -- this system has no 32-bit script host
passed    simulator, echo mode: velk-sim.exe serves COM6
passed    64-bit VBScript for everybody, COM5 in echo mode: calls methods of every family -- 42 results
left out  32-bit VBScript for everybody, COM5 in echo mode: calls methods of every family -- this system has no 32-bit script host
passed    simulator, fast mode: velk-sim.exe serves COM6
passed    64-bit VBScript for everybody, COM5 in fast mode: calls methods of every family -- 42 results
left out  32-bit VBScript for everybody, COM5 in fast mode: calls methods of every family -- this system has no 32-bit script host
passed    removal for everybody: nothing stays in the registry
passed    COM5: reads its settings back as they were set -- 9600 bit/s, 8N1, no handshake, DTR and RTS on
passed    COM6: reads its settings back as they were set -- 9600 bit/s, 8N1, no handshake, DTR and RTS on
left out  line break: COM5 sends one and COM6 sees it -- 10 ms last N; COM6 has seen no break, which Wine does not tell
passed    waits: none ends early -- 1 ms last N (at most N); 10 ms last N (at most N); 100 ms last N (at most N)
passed    TCP reads: of 16 bytes over kind Q, beside a bare client -- N each, a bare N: N of its rate
16 passed, 0 failed, 7 left out
ROWS
}
has_expected_rows() { rows "$work/report.txt" | diff - "$work/expected.txt"; }

break_off() { # break_off SIGNAL STATUS: while the component is registered by the check
  wine "$folder/velk.exe" doctor --check >"$work/broken.txt" 2>&1 </dev/null &
  child=$!
  wait_for "$work/broken.txt" 'passed *registration for everybody'
  kill -STOP $child # it would come to its end
  is_registered
  registered=$?
  ends_with 5 --check # one check at a time
  busy=$?
  kill "-$1" $child
  kill -CONT $child
  wait $child
  [ $? -eq "$2" ] && [ $registered -eq 0 ] && [ $busy -eq 0 ] && grep -q '^velk: another check is under way' "$work/said.txt"
}

stays_registered() {
  classes there.txt
  doctor --check >"$work/report.txt"
  classes after.txt
  cat "$work/report.txt"
  grep -q '^left out  registration: by this check -- there is one, which stays as it is$' "$work/report.txt" &&
    grep -q '^passed    64-bit VBScript as registered, TCP kind S: ' "$work/report.txt" &&
    diff "$work/there.txt" "$work/after.txt"
}

# A USB adapter as drivers of one family enter theirs, with a controller behind it: COM7.
adapter='HKLM\SYSTEM\CurrentControlSet\Enum\FTDIBUS\VID_0403+PID_6001+A5\0000'
make_adapter() {
  start_simulator "$sim" --echo --for 7200
  wine_run reg add 'HKLM\Software\Wine\Ports' /v COM7 /d "$echo_line" /f
  wine_run reg add "$adapter" /v ClassGUID /d '{4D36E978-E325-11CE-BFC1-08002BE10318}' /f
  wine_run reg add "$adapter" /v FriendlyName /d 'USB Serial Port (COM7)' /f
  wine_run reg add "$adapter" /v Service /d FTSER2K /f
  wine_run reg add "$adapter" /v HardwareID /t REG_MULTI_SZ /d 'FTDIBUS\COMPORT&VID_0403&PID_6001' /f
  wine_run reg add "$adapter\\Device Parameters" /v PortName /d COM7 /f
  wineserver -k # ports are made when the system starts
  timeout -k 5 "$longest" wineserver -w
}
latency_is() { # latency_is TYPE VALUE LINE: what the doctor says of a setting
  wine_run reg add "$adapter\\Device Parameters" /v LatencyTimer /t "$1" /d "$2" /f
  doctor --serial com7 | grep '  *latency  ' | tee "$work/latency.txt"
  [ "$(cat "$work/latency.txt")" = "$3" ]
}
link_report() { # but for what is measured
  doctor --serial COM7 | sed 's/^[a-z]*  *\(round trips\|clock\)  .*/\1/'
  doctor --serial COM9
}
expected_link_report() {
  cat <<'ROWS'
ok      device       COM7
ok      adapter      USB Serial Port (COM7) (0403:6001), driver FTSER2K
ok      opening      at 9600 bit/s
-       latency      its driver tells no latency setting
ok      answer       the interface answers in echo mode
round trips
clock
ok      firmware     controller 9 20, kind 3, further 1 2 3
serial:COM7?baud=9600&address=2 works
wrong   device       there is no COM9; plug the adapter in; "velk ports" lists the ports that there are
serial:COM9?baud=9600&address=2 does not work
ROWS
}
links() {
  check "a serial adapter" make_adapter
  expected_link_report >"$work/expected.txt"
  link_report >"$work/links.txt"
  check "  and the link behind it" diff "$work/links.txt" "$work/expected.txt"
  check "  whose latency is low" latency_is REG_DWORD 2 \
    'ok      latency      the adapter holds back what has come for up to 2 ms'
  for value in 3 255; do
    check "  or $value ms, which can be mended" latency_is REG_DWORD $value "advice  latency      the adapter holds back \
what has come for up to $value ms; as an administrator open Device Manager, Ports, USB Serial Port (COM7), Port Settings, \
Advanced, and set the latency timer to 1 ms"
  done
  check "  or not believed" latency_is REG_DWORD 256 '-       latency      its driver tells no latency setting'
  check "  as is a text" latency_is REG_SZ 16 '-       latency      its driver tells no latency setting'
}

rm -rf "$work"
mkdir -p "$folder"
timeout -k 5 "$longest" wineboot -i >/dev/null 2>&1
timeout -k 5 "$longest" wineserver -w
cp "$build"/bin/velk.exe "$folder/"
links
wineserver -p >/dev/null 2>&1
for key in CLSID Interface TypeLib; do wine_run reg add "HKCU\\Software\\Classes\\$key" /f >/dev/null; done
check "without its neighbours the check fails" ends_with 1 --check
check "  and says why" grep -q '^failed    simulator: velk-sim.exe serves TCP on 127.0.0.1 -- .*velk-sim.exe: error 2' "$work/said.txt"
check "  and does what it can" grep -q '^1 passed, 1 failed, 1 left out' "$work/said.txt"
cp "$build"/bin/VelkCom.dll "$build"/bin/velk-sim.exe "$folder/"
echo 'WScript.Quit(0)' >"$work/nothing.js" # Wine's script host writes keys of its own when it first runs
(cd "$work" && wine_run cscript.exe //nologo nothing.js)
classes before.txt

check "two ports whose lines are connected" connect_ports
full_report
expected_rows >"$work/expected.txt"
check "the report" has_expected_rows
check "  tells where the program lies" grep -q '^velk .*house of Jürg\\x64\\velk.exe$' "$work/report.txt"
check "  and on what system" grep -qE '^Windows +[0-9.]+.*, of Wine [0-9.]+' "$work/report.txt"
check "  leaves nothing behind" left_nothing
check "one port is none" ends_with 2 --check --serial COM5
check "  nor is it twice" ends_with 2 --check --serial COM5,com5

check "a check that is killed" break_off KILL 137
check "  leaves its registration" is_registered
script=$(echo "$WINEPREFIX"/drive_c/users/*/AppData/Local/VelkCom/check/check.vbs)
check "  and its script, in lines of Windows" [ "$(grep -vc "$(printf '\r')\$" "$script")" = 0 ]
check "the next one, which Ctrl-C ends" break_off INT 130
check "  has taken it back" grep -q '^passed    earlier check: ' "$work/broken.txt"
check "  and leaves nothing behind" left_nothing

wine_run regsvr32 /s "$folder/VelkCom.dll"
check "what is registered is used and stays" stays_registered
wine_run regsvr32 /s /u "$folder/VelkCom.dll"
rm "$WINEPREFIX/drive_c/windows/system32/vbscript.dll" # as on a Windows without this optional feature
check "as JSON, without VBScript" ends_with 0 --check --json
check "  with an outcome for each check" python3 -c '
import json, sys
report = json.load(open(sys.argv[1]))
outcomes = [check["outcome"] for check in report["checks"]]
assert (outcomes.count("passed"), outcomes.count("left out")) == (8, 7), report
lacks = [check["check"] for check in report["checks"] if check["detail"].startswith("VBScript, an optional feature")]
assert lacks == [f"64-bit VBScript for everybody, TCP kind {kind}" for kind in "QS"], report' "$work/said.txt"
check "  leaves nothing behind" left_nothing

close
