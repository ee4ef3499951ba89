# Checks of scripts: a line for each, what a command said that failed, and a closing line. They need $work, a folder.

passed=0
failed=0

report() { # report STATUS NAME: prints the line of a check and counts it
  if [ "$1" -eq 0 ]; then
    passed=$((passed + 1))
    printf 'ok %s\n' "$2"
  else
    failed=$((failed + 1))
    printf 'FAILED %s\n' "$2"
  fi
}

check() { # check NAME COMMAND...: the command has to succeed
  checked=$1
  shift
  if "$@" >"$work/check.log" 2>&1; then
    report 0 "$checked"
  else
    report 1 "$checked"
    head -n 40 "$work/check.log" | sed 's/^/    /'
  fi
}

close() { # the closing line; ends with 1 when a check failed
  echo "$passed passed, $failed failed"
  [ "$failed" -eq 0 ]
  exit
}
