#!/usr/bin/env bash
# Makes all packages anew.
# Usage: make.sh BUILD_X64 BUILD_X86 OUTPUT_DIR
#   BUILD_X64, BUILD_X86   builds with the presets windows-x64 and windows-x86
#   OUTPUT_DIR             receives the setup program, the zip and the Debian package
set -euo pipefail
[ $# -eq 3 ] || { echo "usage: make.sh BUILD_X64 BUILD_X86 OUTPUT_DIR" >&2; exit 2; }
source=$(cd "$(dirname "$0")/.." && pwd)
mkdir -p "$3"
output=$(realpath "$3")
rm -f "$output"/VelkCom-*.{exe,zip} "$output"/velkcom_*.deb

"$source/packaging/windows/make.sh" "$1" "$2" "$output"

# Packages are built for speed and without the tests.
release=$output/linux
{
  cmake -S "$source" --preset linux -B "$release" -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF &&
    cmake --build "$release" &&
    (cd "$release" && cpack -B "$release/packages")
} >"$output/linux.log" 2>&1 || {
  tail -n 40 "$output/linux.log" >&2
  echo "making the Debian package failed; the whole log is $output/linux.log" >&2
  exit 1
}
cp "$release"/packages/velkcom_*.deb "$output/"
ls "$output"/VelkCom-* "$output"/velkcom_*.deb
