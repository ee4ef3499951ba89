#!/usr/bin/env bash
# Breaks one rule of src/ at a time, in a copy, and shows that a test fails each time. Ends with 1 when one survives.
# With an argument only the rows that hold it.
set -euo pipefail
cd "$(dirname "$0")/.."

# file in src/ ; what it breaks ; sed expression
table=$(cat <<'TEXT'
link/frames.cpp ; bit of the high bank ; s/count >= 128 ? highBank/count > 144 ? highBank/
link/frames.cpp ; bus address of a frame ; s/character(busAddress), character(r.command)/character(r.command), character(busAddress)/
link/serial_transaction.cpp ; pause behind a line break ; s/breakSettling(0.1)/breakSettling(0.09)/
link/serial_transaction.cpp ; where a foreign frame may end ; s/find('#', headerLength)/find('#')/
link/tcp_transaction.cpp ; wait for a reply over TCP ; s/Seconds(2.0)/Seconds(2.1)/
link/tcp_frames.cpp ; compared part of a header ; s/comparedQ = 10/comparedQ = 9/
link/wait.cpp ; waits end at midnight ; s/clock <= guard || //
controller/ctl_init.cpp ; bound of a setting ; s/{104, 128}/{104, 129}/
controller/ctl_init.cpp ; order in which the clock is let go ; /set(hold2, 0);/{N;s/\(.*\)\n\(.*\)/\2\n\1/}
controller/ctl_soft.cpp ; bit of a rising flank ; s/link.sub + 4/link.sub + 3/
parameters/write.cpp ; items that share a byte ; s/found->mask |= item.mask/found->mask = item.mask/
parameters/write.cpp ; longest transfer ; s/longestTransfer = 16/longestTransfer = 15/
timed/preset.cpp ; address of the delays ; s/% 4 \* 2 + 8/% 4 * 2 + 9/
timed/preset.cpp ; records that are left alone ; s/find('.x01')/find('\\x02')/
timed/switch_time.cpp ; address of a second transfer ; s/offset = next + entrySize;/offset = next;/
modules/masks.cpp ; codes of channel masks ; s/31, 63, 127/31, 127, 63/
modules/mailbox.cpp ; codes that a module answers ; s/reply.value == 128 || //
modules/records.cpp ; serial number from which a record is longer ; s/upTo(80249)/upTo(80248)/
platform/posix/socket.cpp ; late time-outs of the system ; s/longest . 8 \* 5/longest/
platform/posix/socket.cpp ; signals during a wait ; s/(errno != EAGAIN && errno != EINTR)/errno != EAGAIN/
TEXT
)
rows=$(grep -F -e "${1:-}" <<<"$table")

limit=600 # s for all tests
copy=build/mutations/tree
build=build/mutations/build
log=build/mutations/log

configure() { cmake -S "$copy" -B "$build" -G Ninja -DCMAKE_CXX_FLAGS="-O0 -g0" >"$log" 2>&1; }
run_tests() { timeout "$limit" "$build/bin/velk_tests" --gtest_brief=1 --gtest_fail_fast >"$log" 2>&1; }
compile() { nice cmake --build "$build" --target velk_tests >"$log" 2>&1; }

rm -rf "$copy"
mkdir -p "$copy"
git ls-files -z -co --exclude-standard | xargs -0 cp -p --parents -t "$copy"
# What an earlier run has left broken in the build folder is built again.
cut -d' ' -f1 <<<"$table" | sort -u | sed "s|^|$copy/src/|" | xargs touch
if ! configure || ! compile || ! run_tests; then
  tail -n 20 "$log"
  echo "mutations: the tests fail without any" >&2
  exit 1
fi

survived=0
while IFS= read -r row; do
  file=${row%% ; *}
  rest=${row#* ; }
  what=${rest%% ; *}
  sed "${rest#* ; }" "src/$file" >"$copy/src/$file"
  if cmp -s "src/$file" "$copy/src/$file" || ! compile; then
    verdict="CANNOT BE MADE"
    survived=1
  elif run_tests; then
    verdict=SURVIVED
    survived=1
  else
    verdict="caught by $(grep -o -m1 'FAILED  \] [^ ,]*' "$log" | cut -d' ' -f4 || echo "a crash or the time limit")"
  fi
  printf '%-60s %s\n' "${file%.cpp}: $what" "$verdict"
  cp "src/$file" "$copy/src/$file"
done <<<"$rows"
exit "$survived"
