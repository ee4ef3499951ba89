#!/bin/sh
# Counts what one TCP transaction costs; the counts hardly vary, so limits can be checked.
# Usage: counts.sh BENCH
#   BENCH   the program velk_bench
# Prints the figures as JSON; ends with 1 when a limit is passed.

set -u
. "$(dirname "$0")/support/noon.sh"
. "$(dirname "$0")/support/programs.sh"
bench=${1:?usage: counts.sh BENCH}
# A busy machine may make a wait out of two: what counts is each transaction, so a limit lies between two counts.
most_calls=3.5
most_instructions=1000 # above those of the bare client
few=100
many=600

work=$(mktemp -d)
servers=
end() {
  for server in $servers; do kill "$server" 2>/dev/null; done
  rm -rf "$work"
}
trap end EXIT

serve() { # serve KIND: starts a server; its port goes to $port
  "$bench" serve "$1" >"$work/$1.port" &
  servers="$servers $!"
  wait_for "$work/$1.port" '[0-9]' || exit 2
  port=$(cat "$work/$1.port")
}

calls() { # calls CLIENT COUNT
  strace -qq -o "$work/calls" "$bench" count "$1" "$port" "$2" || exit 2
  wc -l <"$work/calls"
}

instructions() { # instructions CLIENT COUNT
  valgrind --tool=callgrind --callgrind-out-file="$work/out" "$bench" count "$1" "$port" "$2" 2>"$work/log" || exit 2
  sed -n 's/^summary: //p' "$work/out"
}

each() { # each COUNTER CLIENT: what one transaction adds
  first=$("$1" "$2" $few) && second=$("$1" "$2" $many) || exit 2
  awk "BEGIN { printf \"%.2f\", ($second - $first) / ($many - $few) }"
}

serve velk
velk_calls=$(each calls velk)
bare_calls=$(each calls bare)
velk_instructions=$(each instructions velk)
bare_instructions=$(each instructions bare)
above=$(awk "BEGIN { printf \"%.0f\", $velk_instructions - $bare_instructions }")
cat <<JSON
{
 "counts.velk.calls": $velk_calls,
 "counts.bare.calls": $bare_calls,
 "counts.velk.instructions": $velk_instructions,
 "counts.bare.instructions": $bare_instructions
}
JSON
awk "BEGIN { exit !($velk_calls <= $most_calls && $above <= $most_instructions) }" || {
  echo "counts.sh: $velk_calls system calls (at most $most_calls), $above instructions (at most $most_instructions)" >&2
  exit 1
}
