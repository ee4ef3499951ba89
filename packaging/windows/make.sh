#!/usr/bin/env bash
# Gathers what Windows users get and makes the setup program and the zip of it.
# Usage: make.sh BUILD_X64 BUILD_X86 OUTPUT_DIR
#   BUILD_X64, BUILD_X86   builds with the presets windows-x64 and windows-x86
#   OUTPUT_DIR             receives VelkCom-VERSION-setup.exe and VelkCom-VERSION.zip
set -euo pipefail
[ $# -eq 3 ] || { echo "usage: make.sh BUILD_X64 BUILD_X86 OUTPUT_DIR" >&2; exit 2; }
x64=$(realpath "$1")
x86=$(realpath "$2")
mkdir -p "$3"
output=$(realpath "$3")
here=$(cd "$(dirname "$0")" && pwd)
source=$here/../..

version=$(sed -n 's/^CMAKE_PROJECT_VERSION:.*=//p' "$x64/CMakeCache.txt")
name=VelkCom-$version
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
tree=$work/$name

binaries() { # binaries FOLDER BUILD TRIPLE
  mkdir -p "$tree/$1"
  cp "$2"/bin/{VelkCom.dll,velk.exe,velk-sim.exe} "$tree/$1/"
  "$3-w64-mingw32-strip" "$tree/$1"/*.exe
}

binaries x64 "$x64" x86_64
binaries x86 "$x86" i686
mkdir "$tree/docs"
cp "$source"/docs/*.md "$source/docs/velk.schema.json" "$tree/docs/"
cp -r "$source/docs/images" "$tree/docs/"
cp "$source"/{README.md,CHANGELOG.md,SECURITY.md} "$tree/"
sed 's/$/\r/' "$here/tools.cmd" >"$tree/tools.cmd"
sed 's/$/\r/' "$source/LICENSE" >"$tree/LICENSE.txt"
mkdir "$tree/licenses" # of what the programs contain of others
for package in libcli11-dev nlohmann-json3-dev mingw-w64-x86-64-dev; do
  sed 's/$/\r/' "/usr/share/doc/$package/copyright" >"$tree/licenses/$package.txt"
done
cp -r "$source/examples/windows" "$tree/examples"
cp -r "$source/bindings" "$tree/"
"$here/documents.py" "$tree"

(cd "$work" && cmake -E tar cf "$output/$name.zip" --format=zip "$name")

# The uninstaller removes just the files that were installed, and folders that are empty then.
(cd "$tree" && find . -mindepth 1 -depth \( -type d -printf 'RMDir "$INSTDIR/%P"\n' \) -o -printf 'Delete /REBOOTOK "$INSTDIR/%P"\n') |
  sed 'y,/,\\,; s,^Delete \\REBOOTOK,Delete /REBOOTOK,' >"$work/remove.nsh"
cp "$x64/bin/setup-path.exe" "$work/"
x86_64-w64-mingw32-strip "$work/setup-path.exe"
copyright=$(grep '^Copyright' "$source/LICENSE")
makensis -V2 -NOCD -DVERSION="$version" -DCOPYRIGHT="$copyright" -DTREE="$tree" -DREMOVE="$work/remove.nsh" \
  -DPATH_TOOL="$work/setup-path.exe" -DOUTPUT="$output/$name-setup.exe" "$here/velkcom.nsi"
