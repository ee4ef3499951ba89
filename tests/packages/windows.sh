#!/usr/bin/env bash
# Installs the setup program and the zip under Wine, runs the examples with what they bring, and removes it all.
# Usage: windows.sh SETUP ZIP
#   VELK_SIM   the simulated controller; bin/velk-sim of the native build when not set
#   VELK_WORK  where Wine's files are kept; build/packages/test when not set
set -uo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
. "$here/../support/noon.sh"
. "$here/../support/programs.sh"
. "$here/../support/checks.sh"
setup=$(realpath "${1:?usage: windows.sh SETUP ZIP}")
zip=$(realpath "${2:?usage: windows.sh SETUP ZIP}")
sim=${VELK_SIM:-$root/build/linux/bin/velk-sim}
work=${VELK_WORK:-$root/build/packages/test}
examples=$root/examples/windows

mkdir -p "$work"
rm -rf "${work:?}"/*
export WINEPREFIX=$work/prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
unset DISPLAY WAYLAND_DISPLAY
drive=$WINEPREFIX/drive_c
longest=600 # seconds that any one program may take
simulator=
clean_up() { [ -z "$simulator" ] || kill "$simulator" 2>/dev/null; }
trap clean_up EXIT
trap 'exit 130' INT TERM

wine_run() { timeout -k 5 "$longest" wine "$@" 2>/dev/null </dev/null | tr -d '\r'; }

not() { ! "$@"; }
ends_with() { "${@:2}"; [ $? -eq "$1" ]; }

# --- What an installation may leave behind

# Parts of the registry that programs share, in both hives. Wine's own caches lie elsewhere.
machine='SYSTEM\CurrentControlSet\Control\Session Manager\Environment'
shared_keys=('Software\Classes' 'Software\Microsoft\Windows\CurrentVersion\Uninstall' 'Software\VelkCom' Environment
  "$machine")

snapshot() { # snapshot NAME: the shared keys and every file, but for temporary ones
  for hive in HKLM HKCU; do
    for key in "${shared_keys[@]}"; do
      rm -f "$work/export.reg"
      wine_run reg export "$hive\\$key" "$work/export.reg" /y >/dev/null
      [ ! -e "$work/export.reg" ] || iconv -f UTF-16 -t UTF-8 "$work/export.reg"
    done
  done >"$work/$1.keys"
  (cd "$drive" && find . -path '*/Temp/*' -prune -o -print | sort) >"$work/$1.txt"
}
as_before() { # as_before NAME: the same snapshot, now of that name
  snapshot "$1"
  diff "$work/before.keys" "$work/$1.keys" && diff "$work/before.txt" "$work/$1.txt"
}

install() { wine_run "$setup" /S "$@"; }

refuses() { # refuses FOLDER: the setup ends with 2 and has changed nothing
  install "/D=$1"
  [ $? -eq 2 ] && as_before refused
}

uninstall() { # uninstall FOLDER [SWITCH]: its uninstaller goes on as a copy of itself
  wine_run "$1/uninstall.exe" /S "${@:2}"
  for _ in $(seq 600); do
    [ -e "$1" ] || return 0
    sleep 0.2
  done
  echo "$1 is still there: $(ls "$1")"
  return 1
}

has_files() { # has_files FOLDER
  for file in {x64,x86}/{VelkCom.dll,velk.exe,velk-sim.exe} docs/reference.html docs/images/simulator.png README.html \
    tools.cmd LICENSE.txt bindings/{VelkCom.cs,VelkCom_TLB.pas,velkcom.h} licenses/libcli11-dev.txt examples/set_clock.vbs \
    uninstall.exe; do
    [ -s "$1/$file" ] || { echo "$file is missing"; return 1; }
  done
}
links_lead_somewhere() { # links_lead_somewhere FOLDER: those of its documents
  local page link count=0
  for page in "$1"/*.html "$1"/docs/*.html; do
    for link in $(sed 's/<\(a\|img\) /\n&/g' "$page" | sed -n 's/^<\(a href\|img src\)="\([^"#:]*\)[#"].*/\2/p' | sort -u); do
      count=$((count + 1))
      [ -e "$(dirname "$page")/$link" ] || { echo "$page: $link"; return 1; }
    done
  done
  [ $count -gt 200 ]
}
prompt_runs() ( # prompt_runs FOLDER WORDS: a command in the console of the Start menu
  cd / && printf '%s\r\nexit\r\n' "$2" | timeout -k 5 "$longest" wine cmd /c "$1\\tools.cmd" 2>/dev/null | tr -d '\r'
)
shortcut() { # shortcut FOLDER NAME TARGET: an entry of the Start menu below a folder leads there
  find "$drive/$1" -name "VelkCom $2.lnk" -exec cat {} + | tr -d '\0' | grep -aqF "$3"
}
key() { wine_run reg query "$1" "${@:2}" | grep . ; }

# --- Examples

build_examples() {
  local example
  for example in late_bound early_bound; do
    x86_64-w64-mingw32-g++-posix -std=c++20 -Wall -Wextra -Werror -static -I "$root/bindings" \
      "$examples/$example.cpp" -o "$work/$example.exe" -lole32 -loleaut32 -luuid || return
  done
}

script() { (cd "$1" && wine_run cscript.exe //nologo "$2" 127.0.0.1 "$port_q" pass); }
program() { (cd "$work" && wine_run "$1" 127.0.0.1 "$port_q" pass "${@:2}"); }
says() { # says TEXT COMMAND...: the text is among the lines of the command
  "${@:2}" >"$work/says.log"
  cat "$work/says.log"
  grep -qxE -- "$1" "$work/says.log"
}

script_examples() { # script_examples FOLDER
  check "set_clock.vbs sets the clock" says 'set to:     20[0-9-]+ [0-9:]+' script "$1" set_clock.vbs
  check "  and then finds it right" says 'the clock is right' script "$1" set_clock.vbs
  check "presets.js lists the presets" says '61: Holiday +' script "$1" presets.js
}

program_examples() { # program_examples SUFFIX
  check "late_bound.cpp lists outputs$1" says 'output 11: UD' program late_bound.exe
  check "early_bound.cpp saves an output$1" says 'saved output 5: mode T1, 12 items' \
    program early_bound.exe save 5 output.log
  check "  and restores it$1" says 'restored output 6' program early_bound.exe restore 6 output.log
  check "  as it was$1" says 'output 6: T1' program late_bound.exe
}

# --- The packages

backs_up() ( # backs_up PROGRAM: the second backup takes the place of the first, and nothing else is left
  mkdir -p "$work/backup" && cd "$work/backup" || return
  for _ in 1 2; do wine_run "$1" backup --simulate house.json || return; done
  wine_run "$1" diff house.json house.json && [ "$(ls -A)" = house.json ]
)

for_everybody() {
  local folder="$drive/Program Files/VelkCom"
  check "silent setup for everybody" install
  check "  brings the files" has_files "$folder"
  check "  documents whose links lead somewhere" links_lead_somewhere "$folder"
  check "  an entry of the Start menu for the tools" \
    shortcut ProgramData "tools prompt" 'C:\Program Files\VelkCom\tools.cmd'
  check "  and one for the documents" \
    shortcut ProgramData documents 'C:\Program Files\VelkCom\docs\getting-started-windows.html'
  check "  a console that finds the tools" says '(.*>)?velk [0-9.]+' \
    prompt_runs 'C:\Program Files\VelkCom' 'velk --version'
  check "  and no velk on the path" not key "HKLM\\$machine" /v Path /f VelkCom
  check "  and registers" says '64-bit +everybody +registered +C:.Program Files.VelkCom.x64.VelkCom.dll' \
    wine_run "$folder/x64/velk.exe" doctor
  check "  and an entry for removal" \
    key 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\VelkCom' /v QuietUninstallString
  script_examples "$folder/examples"
  program_examples ""
  check "the installed tool reads an output" says '.x00.x05  \(done\)' \
    wine_run "$folder/x64/velk.exe" call --tcp "127.0.0.1:$port_q" --password pass ReadCom 1 5 1 V
  check "  and writes a backup, also over an older one" backs_up "$folder/x64/velk.exe"
  touch "$folder/examples/mine.vbs"
  check "setup over an installed version" install
  check "  works" says '61: Holiday +' script "$folder/examples" presets.js
  check "  and keeps the user's own files" rm "$folder/examples/mine.vbs"
  check "silent removal" uninstall "$folder" /AllUsers
  check "  leaves nothing" as_before after
}

for_one_user() {
  local folder
  check "silent setup for the current user" install /CurrentUser "/D=C:\\Tools\\VelkCom"
  folder="$drive/Tools/VelkCom"
  check "  brings the files to the given folder" has_files "$folder"
  check "  registers for this user" says '64-bit +this user +registered +C:.Tools.VelkCom.x64.VelkCom.dll' \
    wine_run "$folder/x64/velk.exe" doctor
  check "  with a Start menu of the user's own" shortcut users "tools prompt" 'C:\Tools\VelkCom\tools.cmd'
  check "  and for nobody else" not key 'HKLM\Software\Classes\VelkCom.Serial'
  check "silent removal" uninstall "$folder" /CurrentUser
  rmdir "$drive/Tools" 2>/dev/null
  check "  leaves nothing" as_before after-user
}

path_is() { # path_is KEY TEXT
  wine_run reg query "$1" /v Path | sed -n 's/^ *Path *REG_[A-Z_]*SZ *//p' >"$work/path"
  [ "$(cat "$work/path")" = "$2" ] || { cat "$work/path"; return 1; }
}

search_path() {
  local folder='C:\Program Files\VelkCom\x64' own='C:\Tools\VelkCom\x64' all="HKLM\\$machine" user='HKCU\Environment'
  local long short='C:\a;;"C:\b;c";%SystemRoot%\System32;'
  long=$short$(printf 'C:\\%0.sfiller;' $(seq 600))'C:\end' # six times what a text of the setup program holds
  wine_run reg add "$all" /v Path /t REG_EXPAND_SZ /d "$long" /f >/dev/null
  wine_run reg add "$user" /v Path /t REG_SZ /d "$short" /f >/dev/null
  snapshot before
  check "setup that puts velk on the path of everybody" install /Path=yes
  check "  behind a long one" path_is "$all" "$long;$folder"
  check "  and on nobody else's" path_is "$user" "$short"
  check "setup over it without a word on the path" install
  check "  leaves it there, once" path_is "$all" "$long;$folder"
  check "setup that takes it from the path" install /Path=no
  check "  leaves the long one" path_is "$all" "$long"
  check "setup once more" install /Path=yes
  check "  and removal" uninstall "$drive/Program Files/VelkCom"
  check "  leave nothing" as_before after-path
  check "setup that puts velk on the path of this user" install /CurrentUser /Path=yes '/D=C:\Tools\VelkCom'
  check "  behind a semicolon" path_is "$user" "$short$own;"
  check "  and no one else's" path_is "$all" "$long"
  wine_run reg add "$user" /v Path /t REG_SZ /d "$short$own;C:\\later" /f >/dev/null
  check "  removes what it has put there" uninstall "$drive/Tools/VelkCom"
  check "  and not what came since" path_is "$user" "$short"'C:\later'
  wine_run reg add "$user" /v Path /t REG_SZ /d "$short$own" /f >/dev/null
  install /CurrentUser /Path=yes '/D=C:\Tools\VelkCom'
  check "  nor an entry that was there before" uninstall "$drive/Tools/VelkCom"
  check "  of the user's own" path_is "$user" "$short$own"
  wine_run reg delete "$user" /v Path /f >/dev/null
  check "setup for a user without a path" install /CurrentUser /Path=yes '/D=C:\Tools\VelkCom'
  check "  makes one" path_is "$user" "$own"
  check "  which removal takes away" uninstall "$drive/Tools/VelkCom"
  check "  whole" not key "$user" /v Path
  wine_run reg add "$user" /v Path /t REG_BINARY /d 00 /f >/dev/null
  check "setup that finds no text there says so" ends_with 3 install /CurrentUser /Path=yes '/D=C:\Tools\VelkCom'
  uninstall "$drive/Tools/VelkCom"
  rmdir "$drive/Tools" 2>/dev/null
}

side_by_side() {
  local folder="$drive/Program Files/VelkCom" own="$drive/Tools/VelkCom"
  check "setup for everybody beside one for this user" install
  install /CurrentUser "/D=C:\\Tools\\VelkCom"
  check "removal without a switch removes what lies in its folder" uninstall "$own"
  check "  with the registration for this user" not key 'HKCU\Software\Classes\VelkCom.Serial'
  check "  the other one stays registered" \
    says '64-bit +everybody +registered +C:.Program Files.VelkCom.x64.VelkCom.dll' \
    wine_run "$folder/x64/velk.exe" doctor
  check "  with its entry" key 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\VelkCom' /v DisplayName
  check "removal with a wrong switch" uninstall "$folder" /CurrentUser
  rmdir "$drive/Tools" 2>/dev/null
  check "  leaves nothing either" as_before after-both
  check "setup refuses a folder below a file" refuses 'C:\occupied\VelkCom'
  check "  and one on a drive that is not there" refuses 'Q:\VelkCom'
  check "  and one of a name that cannot be" refuses 'C:\windows\notepad.exe'
}

without_registration() {
  mkdir -p "$work/zip"
  (cd "$work/zip" && cmake -E tar xf "$zip")
  local folder name
  folder=$(echo "$work"/zip/VelkCom-*)
  check "an unregistered component cannot be created" not says 'output 11: UD' program late_bound.exe
  check "  and the doctor tells what to type" says '64-bit +this user +regsvr32 /n /i:user .*.x64.VelkCom.dll"?' \
    wine_run "$folder/x64/velk.exe" doctor
  check "a manifest in the 64-bit component" "$root/tests/hosts/check_manifest.sh" "$folder/x64/VelkCom.dll" amd64
  check "  and in the 32-bit component" "$root/tests/hosts/check_manifest.sh" "$folder/x86/VelkCom.dll" x86
  cp "$folder/x64/VelkCom.dll" "$work/"
  for name in late_bound early_bound; do
    sed "s/@VERSION@/${folder##*-}/" "$here/client.exe.manifest" >"$work/$name.exe.manifest"
  done
  program_examples " without registration"
}

timeout -k 5 "$longest" wineboot -i >/dev/null 2>&1
# Wine's script host writes keys of its own when it first runs.
echo 'WScript.Quit(0)' >"$work/nothing.js"
(cd "$work" && wine_run cscript.exe //nologo nothing.js)
for folder in CLSID Interface TypeLib; do # these are there on every used system
  wine_run reg add "HKCU\\Software\\Classes\\$folder" /f >/dev/null
done
for hive in HKLM HKCU; do
  wine_run reg add "$hive\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall" /f >/dev/null
done
touch "$drive/occupied"
snapshot before
start_simulator "$sim" --tcp 0 --password pass --for 7200
check "the C++ examples build" build_examples
for_everybody
for_one_user
side_by_side
without_registration
search_path

close
