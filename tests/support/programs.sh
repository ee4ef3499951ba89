# Programs that scripts start and wait for.

wait_for() { # wait_for FILE PATTERN: until a program that prints there has said so; five minutes at most
  for _ in $(seq 6000); do
    grep -q "$2" "$1" 2>/dev/null && return 0
    sleep 0.05
  done
  echo "$0: $1 says no '$2'" >&2
  return 1
}

start_simulator() { # start_simulator VELK_SIM OPTION...: $simulator is its process; its interfaces, where it has them,
                    # are at $port_q, $port_s, $echo_line and $fast_line
  said=$work/simulator.log
  rm -f "$said"
  "$@" >"$said" 2>&1 &
  simulator=$!
  wait_for "$said" '^ready' || exit 2
  port_q=$(sed -n 's/^tcp Q .*:\([0-9]*\)$/\1/p' "$said")
  port_s=$(sed -n 's/^tcp S .*:\([0-9]*\)$/\1/p' "$said")
  echo_line=$(sed -n 's/^echo //p' "$said")
  fast_line=$(sed -n 's/^fast //p' "$said")
}
