#!/bin/sh
# Runs real hosts against the Windows component under Wine, with a simulated controller at the other end.
# Usage: run_hosts.sh BUILD_DIR [HOSTS]
#   BUILD_DIR   a build with the preset windows-x64, or with windows-x86 where a 32-bit Wine runs it
#   HOSTS       a script beside this one, with other hosts than those here
#   VELK_SIM    the simulated controller; bin/velk-sim of the native build when not set
# Prints one line for each check and a closing line; ends with 1 when a check failed.

set -u
here=$(cd "$(dirname "$0")" && pwd)
. "$here/../support/noon.sh"
. "$here/../support/programs.sh"
. "$here/../support/checks.sh"
build=$(cd "${1:?usage: run_hosts.sh BUILD_DIR}" && pwd) || exit 2
sim=${VELK_SIM:-$here/../../build/linux/bin/velk-sim}
case $build in
*x86) own=win32 other=win64 ;; # the type library of this build, and that of the other
*) own=win64 other=win32 ;;
esac
work=$build/hosts
mkdir -p "$work"

export WINEPREFIX="$work/prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY WAYLAND_DISPLAY
longest=600 # seconds that any one host may take, which needs some ten
children=

wine_run() { timeout -k 5 "$longest" wine "$@" 2>/dev/null </dev/null; }

count_lines() { # count_lines FILE: prints the check lines of a host and counts them
  lines=$(tr -d '\r' <"$1" | grep -E '^(ok|FAILED) ')
  [ -z "$lines" ] || printf '%s\n' "$lines"
  passed=$((passed + $(printf '%s\n' "$lines" | grep -c '^ok ')))
  failed=$((failed + $(printf '%s\n' "$lines" | grep -c '^FAILED ')))
}

# held_up FILE: whether a host did not start at all, which is Wine's doing, or a check failed since a link lost
# something. The clocks here are real: a byte on a line in echo mode has 0.1 s to come back, and on a busy machine one
# of many thousand comes later.
held_up() {
  [ ! -s "$1" ] || grep -A12 -e '^FAILED' -e ': Failure' "$1" | grep -qE "got \[25[1-4][]|]|\(25[1-4][,)]|> .*Byte 25[1-4]"
}

until_not_held_up() { # until_not_held_up FILE COMMAND...: three times at most; the output goes to the file
  log=$1
  shift
  for _ in 1 2; do
    "$@" >"$log" && return
    held_up "$log" || return
    echo "$(basename "$log" .log): once more, it was held up"
  done
  "$@" >"$log"
}

run_lines() { # run_lines PROGRAM ARGUMENTS...; a script that breaks off still ends with 0
  (cd "$work" && wine_run "$@") | tr -d '\r' | tee "$work/lines"
  grep -q '^done' "$work/lines" && ! grep -q '^FAILED' "$work/lines"
}

script() { # script FILE ARGUMENTS...: runs a script host
  output=$work/$(basename "$1").log
  file=$1
  shift
  case $file in
  *.vbs) cat "$here/link_common.vbs" "$here/$file" >"$work/$file" ;;
  *) cp "$here/$file" "$work/$file" ;;
  esac
  checks "$output" "$file $*" cscript.exe //nologo "$file" "$@"
}

checks() { # checks LOG NAME PROGRAM ARGUMENTS...: runs a host that prints check lines
  log=$1 title=$2
  shift 2
  until_not_held_up "$log" run_lines "$@"
  count_lines "$log"
  grep -q '^done' "$log"
  report $? "$title ran to its end"
}

end() {
  for child in $children; do kill "$child" 2>/dev/null && wait "$child" 2>/dev/null; done
  wineserver -k >/dev/null 2>&1
}
trap end EXIT
trap 'exit 130' INT TERM

start_controller() {
  start_simulator "$sim" --tcp-q 0 --tcp-s 0 --password pass --echo --fast --for 7200
  children="$children $simulator"
  ln -sfn "$echo_line" "$WINEPREFIX/dosdevices/com5"
  ln -sfn "$fast_line" "$WINEPREFIX/dosdevices/com6"
}

start_silent_peer() { # accepts connections and says nothing
  rm -f "$work/silent.log"
  python3 -c '
import socket, time
s = socket.create_server(("127.0.0.1", 0))
print(s.getsockname()[1], flush=True)
time.sleep(7200)' >"$work/silent.log" &
  children="$children $!"
  wait_for "$work/silent.log" '[0-9]' || exit 2
}

# --- Registration

export_classes() { # export_classes NAME: what is registered for everybody and for this user
  for hive in HKLM HKCU; do
    rm -f "$work/classes.reg"
    wine_run reg export "$hive\\Software\\Classes" "$work/classes.reg" /y >/dev/null
    iconv -f utf-16 -t utf-8 "$work/classes.reg" >"$work/$1-$hive.txt"
  done
}
leaves_nothing() { # the classes are again what they were; shows what is not
  export_classes after
  for hive in HKLM HKCU; do diff "$work/before-$hive.txt" "$work/after-$hive.txt"; done >"$work/left.txt"
  head -20 "$work/left.txt"
  [ ! -s "$work/left.txt" ]
  report $? "  leaves nothing"
}

# Keys below $classes.
regsvr() { wine_run regsvr32 /s "$@" "$build/bin/VelkCom.dll" >/dev/null; }
add() { wine_run reg add "$classes\\$1" /ve /d "$2" /f >/dev/null; }
remove() { wine_run reg delete "$classes\\$1" /f >/dev/null; }
has() { for key; do check "  has $key" wine_run reg query "$classes\\$key"; done; }
is_missing() { ! wine_run reg query "$classes\\$1"; }
lacks() { for key; do check "  has no $key" is_missing "$key"; done; }

registration() {
  class='CLSID\{DD354E3B-3B0A-4871-81E2-879F41FB2B63}'
  library='TypeLib\{5694BB07-4353-4508-8C6C-0B988D8DD518}'
  classes='HKCU\Software\Classes'
  for folder in CLSID Interface TypeLib; do add $folder ""; done # these are there on every used system
  regsvr /u
  regsvr /u /n /i:user
  export_classes before

  check "registering for this user" regsvr /n /i:user
  has "$library\\1.0\\0\\$own"
  export_classes user
  check "  and for nobody else" cmp "$work/before-HKLM.txt" "$work/user-HKLM.txt"
  check "unregistering for this user" regsvr /u /n /i:user
  leaves_nothing
  check "the word for this user in capitals" regsvr /n /i:USER
  has VelkCom.Serial
  regsvr /u /n /i:User
  leaves_nothing

  # A component of the other width that is registered beside it keeps the keys that both share.
  classes='HKLM\Software\Classes'
  add "$library\\1.0\\0\\$other" other.dll
  check "registering for everybody" regsvr
  check "unregistering beside the $other component" regsvr /u
  has "$library\\1.0\\0\\$other" 'VelkCom.Serial\CLSID'
  remove "$library\\1.0\\0\\$other"

  # A later version has a type library of its own and takes over what bears no version.
  regsvr
  add "$library\\2.0" later
  add 'VelkCom.Serial\CurVer' VelkCom.Serial.2
  add "$class\\ProgID" VelkCom.Serial.2
  check "unregistering beside a later version" regsvr /u
  has "$library\\2.0" 'VelkCom.Serial\CLSID' "$class"
  lacks "$library\\1.0" VelkCom.Serial.1
  remove "$library\\2.0"
  check "registering over it" regsvr
  check "unregistering for everybody" regsvr /u
  leaves_nothing
  check "registering again" regsvr
}

# --- Hosts

test_program() { # test_program NAME: runs a program of tests
  export VELK_TCP_PORT="$port_q" VELK_TCP_S_PORT="$port_s" VELK_FAST_PORT=6
  export VELK_SILENT_PORT="$(cat "$work/silent.log")"
  export VELK_TYPE_LIBRARY="Z:$build/idl/velkcom.tlb"
  until_not_held_up "$work/$1.log" wine_run "$build/bin/$1.exe" --gtest_color=no
  status=$?
  tr -d '\r' <"$work/$1.log" | sed -n \
    -e 's/^\[       OK \] \(.*\) (.*/ok \1/p' -e 's/^\[  FAILED  \] \(.*\) (.*ms)$/FAILED \1/p' >"$work/$1.checks"
  [ $status -eq 0 ] || tr -d '\r' <"$work/$1.log" | grep -A12 ': Failure'
  count_lines "$work/$1.checks"
  grep -q '  PASSED  ' "$work/$1.log"
  report $? "$1 ran to its end"
}

presets() { # presets PORT EXPECTED: what the example in Pascal prints, and the status that it ends with
  got=$({ wine_run "$build/bin/pascal/Presets.exe" 127.0.0.1 "$1" pass; echo $?; } | tr -d '\r' | tr '\n' '|')
  [ "$got" = "$2" ] && return
  [ ${#got} -lt 5 ] || echo "FAILED Presets.dpr: got [${got##*: result }]" # no more than a status: it did not start
  false
}

example() { # example PORT EXPECTED
  until_not_held_up "$work/Presets.log" presets "$@"
  report $? "Presets.dpr: $2"
  cat "$work/Presets.log"
}

lists_outputs() { # lists_outputs COMMAND...: what the early-bound examples print of the outputs that are in use
  "$@" 127.0.0.1 "$port_q" pass | tr -d '\r' >"$work/outputs.txt"
  grep -qx 'output 5: T1, 12 items' "$work/outputs.txt" && tail -n 1 "$work/outputs.txt" | grep -q '^output 21: T5, '
}

pascal() { # while the presets are as they come with the controller
  [ -d "$build/bin/pascal" ] || { echo "$build/bin has no pascal: tools/pascal makes it" && return; }
  lights=' 1  All lights off    delays 20, 0| 2  Evening           delays 10, 40|'
  example "$port_q" "${lights}30  Film              delays 5, 0|61  Holiday           delays 60, 120|0|"
  example 1 'The link does not open: result 252|1|'
  check "Outputs.dpr lists the outputs" lists_outputs wine_run "$build/bin/pascal/Outputs.exe"
  for link in "tcp $port_q pass Q" "com 6 fast"; do
    # shellcheck disable=SC2086 # arguments
    checks "$work/pascal_host.log" "pascal_host $link" "$build/bin/pascal/pascal_host.exe" $link
  done
}

[ -x "$sim" ] || { echo "$0: no simulated controller at $sim; build the preset linux first" >&2; exit 2; }
if [ ! -e "$WINEPREFIX/system.reg" ]; then
  timeout -k 5 "$longest" wineboot -i >/dev/null 2>&1
  timeout -k 5 "$longest" wineserver -w # it goes on filling the registry behind our back
fi
# One server for all hosts: left to itself Wine starts one for each, and on a busy machine a host met one that ended.
wineserver -p >/dev/null 2>&1
if [ $# -eq 2 ]; then
  regsvr
  start_controller
  . "$here/$2"
  close
fi
registration
start_controller
start_silent_peer
test_program platform_tests
test_program marshalling
pascal
test_program typed_client
script values.vbs
for suite in configuration.vbs jscript.js; do
  script "$suite" tcp "$port_q" pass Q
  script "$suite" tcp "$port_s" pass S
  script "$suite" com 5 echo
  script "$suite" com 6 fast
done
script modules.vbs tcp "$port_q" pass Q
script modules.vbs com 6 fast

close
