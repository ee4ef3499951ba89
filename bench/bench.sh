#!/bin/sh
# Measures the speed of the library, of the component and of whole jobs of velk; prints tables, leaves JSON beside the
# build and the tables with their date in docs/performance.md.
# Usage: bench.sh BUILD [WINDOWS_BUILD]
#   BUILD           a build of the preset linux
#   WINDOWS_BUILD   a build with the preset windows-x64 and VELK_BENCH; without it, Wine's rows are left out
#   STARTS          how often each program is started; the median counts (3)

set -u
here=$(cd "$(dirname "$0")" && pwd)
. "$here/../tests/support/noon.sh"
. "$here/../tests/support/programs.sh"
build=$(cd "${1:?usage: bench.sh BUILD [WINDOWS_BUILD]}" && pwd) || exit 2
windows=${2:+$(cd "$2" && pwd)}
bench=$build/bin/velk_bench
work=$build/figures
starts=${STARTS:-3}
longest=120 # seconds that any one program may take
core=0
other=1
children=

end() {
  for child in $children; do kill "$child" 2>/dev/null; done
}
trap end EXIT
trap 'exit 130' INT TERM
rm -rf "$work"
mkdir -p "$work"

pinned() { timeout -k 5 "$longest" taskset -c $core "$@"; }

measure() { # measure NAME COMMAND...: one start, its figures go to a file
  name=$1
  shift
  echo "  $name" >&2
  "$@" >"$work/$name.json" 2>"$work/$name.log" || cat "$work/$name.log" >&2
  [ -s "$work/$name.json" ] || rm "$work/$name.json"
}

keep_other_core_busy() {
  taskset -c $other sh -c 'while :; do :; done' &
  children="$children $!"
}

serve() { # serve KIND: a server on the same core; its port goes to $port
  rm -f "$work/port" # it may hold the last server's for a moment
  taskset -c $core "$bench" serve "$1" >"$work/port" &
  children="$children $!"
  wait_for "$work/port" '[0-9]' || exit 2
  port=$(cat "$work/port")
}

cpu_of() { # cpu_of PROCESS: the CPU time of all its threads, in nanoseconds
  cat /proc/"$1"/task/*/schedstat | awk '{ sum += $1 } END { printf "%.0f", sum }'
}

wine_wait() { # what the process uses during three waits of two seconds, as a part of that time
  taskset -c $core wine "$windows/bin/velk_bench.exe" wait "$port" >"$work/wait.out" 2>/dev/null &
  process=$!
  children="$children $process"
  for _ in $(seq 600); do
    grep -q waiting "$work/wait.out" && break
    sleep 0.05
  done
  sleep 0.5
  before=$(cpu_of $process)
  sleep 7
  after=$(cpu_of $process)
  wait $process
  grep -q waited "$work/wait.out" || return 1
  awk "BEGIN { printf \"{\\\"wait.wine\\\": %.9f}\\n\", ($after - $before) / 6e9 }"
}

requests() { # requests CLIENT COUNT: what the client's thread asks of Wine's server for so many reads and its start
  wineserver -k 2>/dev/null # only a server that starts with the client tells
  WINEDEBUG=+server pinned wine "$windows/bin/velk_bench.exe" count "$1" "$port" "$2" 2>&1 |
    awk '/^[0-9a-f]+: [a-z_]+\( / { count[$1]++ } /: send_socket\( / { own = $1 } END { print +count[own]; exit !own }'
}

wine_requests() { # what each client's read asks
  figures=
  for client in velk drain bare; do
    few=$(requests $client 100) && many=$(requests $client 600) || return 1
    figures="$figures, \"server.$client\": $(awk "BEGIN { printf \"%.3f\", ($many - $few) / 500 }")"
  done
  echo "{${figures#, }}"
}

wine_script() { (cd "$here" && pinned wine cscript.exe //nologo calls.vbs | tr -d "\r"); }

register_idle() { # the object that does nothing, so that a script can create it
  id='{875152BF-F6DD-40FD-AE2A-9C84FF5C6705}'
  wine reg add 'HKCR\VelkBench.Idle\CLSID' /ve /d "$id" /f
  wine reg add "HKCR\\CLSID\\$id\\InprocServer32" /ve /d "$(winepath -w "$windows/bin/velk_idle.dll")" /f
}

run_wine() {
  export WINEPREFIX="$build/prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
  unset DISPLAY WAYLAND_DISPLAY
  [ -e "$WINEPREFIX/system.reg" ] || timeout -k 5 120 wineboot -i >/dev/null 2>&1
  wineserver -k 2>/dev/null # one that was started here is pinned, too
  pinned wine regsvr32 /s "$windows/bin/VelkCom.dll"
  register_idle >/dev/null 2>&1
  for start in $(seq "$starts"); do
    measure "wine-tcp-$start" pinned wine "$windows/bin/velk_bench.exe" tcp "$port"
    measure "wine-calls-$start" pinned wine "$windows/bin/velk_bench.exe" calls
    measure "wine-script-$start" wine_script
    measure "wine-wait-$start" wine_wait
  done
  measure wine-requests wine_requests
}

echo "  jobs, some eight minutes" >&2
prompt="chrt --fifo 1" # what waits runs on at once, whatever else the machine does; needs root
$prompt true 2>/dev/null || prompt=
taskset -c $core $prompt python3 -B "$here/jobs.py" "$build" "$here/../docs/performance.md"
keep_other_core_busy
for start in $(seq "$starts"); do
  for section in tcp lines paced wait threads memory page; do
    measure "$section-$start" pinned "$bench" "$section"
  done
done
measure counts "$here/../tests/counts.sh" "$bench"
[ -z "$windows" ] || { serve velk && run_wine; }
python3 "$here/report.py" "$work" "$build/figures.json" "$here/../docs/performance.md"
