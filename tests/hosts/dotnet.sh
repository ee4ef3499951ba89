# The hosts of .NET, with what tools/fetch_dotnet has brought to build/dotnet. Read by run_hosts.sh.

project=$(cd "$here/../.." && pwd)
dotnet=$project/build/dotnet
compilers=$(echo "$dotnet"/sdk/*/Roslyn/bincore)
references=$(echo "$dotnet"/packs/*/*/ref/*)
declaration=Z:$project/bindings/VelkCom.cs
made=$work/dotnet
rm -rf "$made"
mkdir -p "$made"
printf -- '-r:"Z:%s"\n' "$references"/*.dll >"$made/references.rsp"

compile() { # compile csc|vbc ASSEMBLY ARGUMENTS...
  compiler=$1
  assembly=$2
  shift 2
  (cd "$here/dotnet" && wine_run "$dotnet/dotnet.exe" exec "$compilers/$compiler.dll" -nologo -nostdlib -warnaserror+ \
    "@Z:$made/references.rsp" "-out:Z:$made/$assembly.dll" "$@")
  report $? "$assembly compiles"
}

execute() ( # execute ASSEMBLY ARGUMENTS...
  cd "$made" && wine_run "$dotnet/dotnet.exe" exec --runtimeconfig "$compilers/csc.runtimeconfig.json" "$@"
)

talks() { # talks ASSEMBLY SESSION_TEXT THREAD...: what a host prints on each thread has to be that text
  execute "$1.dll" "$port_q" "$port_s" | tr -d '\r' >"$made/$1.txt"
  [ -s "$made/$1.txt" ] || return
  talker=$1
  expected=$2
  differed=0
  shift 2
  for thread; do
    outcome=ok
    sed -n "s/^$thread: //p" "$made/$talker.txt" | diff "$expected" - >"$made/differences" || outcome=FAILED differed=1
    echo "$outcome $talker, $thread"
    cat "$made/differences"
  done
  return $differed
}

host() { # host ASSEMBLY SESSION_TEXT THREAD...
  until_not_held_up "$work/$1.log" talks "$@"
  status=$?
  count_lines "$work/$1.log"
  grep '^[<>]' "$work/$1.log"
  report $status "$1 ran to its end"
}

sets_clock() { # the clock that the example reads back is that of this machine, also for the native tool
  before=$(date '+set to: %F %T')
  said=$(execute SetClock.dll 127.0.0.1 "$port_q" pass | tr -d '\r')
  printf '%s\n' "$before" "$said" "$(date '+set to: %F %T')" | LC_ALL=C sort -c &&
    "$(dirname "$sim")/velk" clock --tcp "127.0.0.1:$port_q" --password pass | grep "^controller  $(LC_ALL=C date +%A) "
}

finds_none() {
  execute SetClock.dll 127.0.0.1 1 pass
  [ $? -eq 1 ]
}

compile csc Shared -target:library "$declaration" Session.cs
compile csc EarlyBound -r:"Z:$made/Shared.dll" EarlyBound.cs
compile csc LateBound -r:"Z:$made/Shared.dll" LateBound.cs
compile vbc EarlyBoundBasic -r:"Z:$made/Shared.dll" -nosdkpath -define:_MYTYPE=\"Empty\" -optionstrict+ -optioninfer+ \
  -vbruntime:"Z:$references/Microsoft.VisualBasic.Core.dll" EarlyBound.vb
# The compiler of the .NET Framework knows no later version of the language.
compile csc SetClock -langversion:5 ../../../examples/windows/SetClock.cs
compile csc Outputs -langversion:5 "$declaration" ../../../examples/windows/Outputs.cs

grep -v '^late: ' "$here/dotnet/session.txt" >"$made/session.txt"
host EarlyBound "$made/session.txt" "main MTA" "first STA" "second STA"
host LateBound "$here/dotnet/session.txt" "main MTA" "first STA" "second STA"
host EarlyBoundBasic "$made/session.txt" "main STA" "first STA" "second STA"
check "SetClock sets the clock" sets_clock
check "  and tells when no controller answers" finds_none
check "Outputs.cs lists the outputs" lists_outputs execute Outputs.dll
