#!/usr/bin/env bash
# Unpacks the Debian package into an empty root, builds a program against it as its user would, with CMake and
# with pkg-config, and runs the program and the packaged tools against each other.
# Usage: debian.sh PACKAGE
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/../support/noon.sh"
. "$here/../support/programs.sh"
package=$(realpath "${1:?usage: debian.sh PACKAGE}")
example=$here/../../examples/linux

work=$(mktemp -d)
simulator=
clean_up() {
  [ -z "$simulator" ] || kill "$simulator" 2>/dev/null || true
  rm -rf "$work"
}
trap clean_up EXIT
trap 'exit 130' INT TERM

check() { # check NAME COMMAND...
  local name=$1
  shift
  if "$@" >"$work/log" 2>&1; then echo "ok $name"; else echo "FAILED $name"; cat "$work/log"; exit 1; fi
}

check "lintian finds no error in the package" lintian --allow-root --fail-on error "$package"
# Of this build's own tree nothing may be needed.
check "the package unpacks" dpkg-deb -x "$package" "$work/root"
usr=$work/root/usr
check "its headers lie in one folder" test "$(ls "$usr/include")" = velkcom
check "the example finds the package" \
  env -C "$work" cmake -S "$example" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$usr" -DCMAKE_CXX_FLAGS=-Werror
check "  and builds with it" cmake --build "$work/cmake"
pkg_config() { PKG_CONFIG_PATH="$usr/lib/pkgconfig" pkg-config "$@" velkcom; }
check "pkg-config knows the package" pkg_config --exists
# shellcheck disable=SC2046: the flags are words
check "  and the example builds with its flags" \
  g++ "$example/presets.cpp" -o "$work/presets" $(pkg_config --cflags --libs)
version=$(dpkg-deb -f "$package" Version)
check "its version is the package's" test "$(pkg_config --modversion)" = "$version"
check "  and that of the tools" \
  test "$("$usr/bin/velk" --version), $("$usr/bin/velk-sim" --version)" = "velk $version, velk-sim $version"
check "  and of the manual page" sh -c "zcat -f '$usr'/share/man/man1/velk.1* | grep -F '\"VelkCom $version\"'"
check "  and the newest that CHANGELOG.md tells of" \
  test "$(zcat -f "$usr"/share/doc/velkcom/CHANGELOG.md* | grep '^## [0-9]' | head -n 1)" = "## $version"
pictures_are_there() ( # those of its first document
  cd "$usr/share/doc/velkcom" && ls $(sed -n 's/^!\[.*](\(.*\))$/\1/p' README.md) docs/reference.md
)
check "its documents lie where they lead to each other" pictures_are_there
completes() { # completes LINE COMPLETION: bash, with the cursor behind the line, offers the completion
  bash -c '. "$1"; COMP_LINE=$2 COMP_POINT=${#2}; compopt() { COMPREPLY=("$*"); }; _velk "$4" "${2##* }"
    printf "%s\n" "${COMPREPLY[@]}" | grep -qx -- "$3"' \
    completes "$usr/share/bash-completion/completions/velk" "$@" "$usr/bin/velk"
}
check "bash completes a command" completes "velk rest" restore
check "  and its options" completes "velk restore --dr" --dry-run
check "  and leaves files to the shell" completes "velk restore ho" "-o default"
check "zsh and fish find theirs" test -s "$usr/share/zsh/vendor-completions/_velk" \
  -a -s "$usr/share/fish/vendor_completions.d/velk.fish"

start_simulator "$usr/bin/velk-sim" --tcp 0 --password pass --echo --for 3600
lists_presets() {
  timeout 600 "$@" >"$work/presets.txt" && [ "$(wc -l <"$work/presets.txt")" -eq 4 ] &&
    grep -q '^ 2  Evening           delays 10, 40$' "$work/presets.txt"
}
check "the example lists the presets over TCP" lists_presets "$work/cmake/presets" 127.0.0.1 "$port_q" pass
check "  and over a serial line" lists_presets "$work/presets" "$echo_line"
reads_mode() { [ "$("$usr/bin/velk" call --tcp "127.0.0.1:$port_q" --password pass ReadCom 1 5 1 V)" = '\x00\x05  (done)' ]; }
check "the packaged tool reads an output" reads_mode
