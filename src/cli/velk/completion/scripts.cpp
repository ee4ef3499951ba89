#include "cli/velk/completion/scripts.h"

#include <algorithm>
#include <array>

namespace velk::cli {
namespace {

struct Script {
  std::string_view shell;
  std::string_view text;
};

// Each asks the program that the line names: `velk` and `velk-sim` complete themselves.
constexpr std::array scripts{
    Script{"bash", R"(_velk() {
  local answer
  COMPREPLY=()
  answer=$("$1" complete bash "$COMP_LINE" "$COMP_POINT" "$2" 2>/dev/null) || { compopt -o default; return; }
  [ -z "$answer" ] || mapfile -t COMPREPLY <<<"$answer"
  [[ ${#COMPREPLY[@]} -ne 1 || ${COMPREPLY[0]} != *[=/:,@] ]] || compopt -o nospace
}
complete -o nosort -F _velk velk velk-sim
)"},
    Script{"zsh", R"(#compdef velk velk-sim
_velk() {
  local answer line name
  local -a shown
  answer=$("${words[1]}" complete zsh "${(@Q)words[2,CURRENT-1]}" "=${(Q)PREFIX}" 2>/dev/null) || { _files; return }
  for line in "${(@f)answer}"; do
    name=${line%%$'\t'*}
    shown=("${line/$'\t'/  -- }")
    case $name in
    '') ;;
    *[=/:,@]) compadd -l -d shown -S '' -- "$name" ;;
    *) compadd -l -d shown -- "$name" ;;
    esac
  done
}
if [[ $funcstack[1] = _velk ]]; then _velk "$@"; else compdef _velk velk velk-sim; fi
)"},
    Script{"fish", R"(function __velk
    set -l words (commandline -opc)
    set -l word (commandline -ct)
    set -l found ($words[1] complete fish $words[2..] "=$word" 2>/dev/null)
    or begin
        __fish_complete_path $word
        return
    end
    string join \n -- $found
end
complete -c velk -f -a '(__velk)'
complete -c velk-sim -f -a '(__velk)'
)"},
    Script{"powershell", R"(Register-ArgumentCompleter -Native -CommandName velk, velk-sim -ScriptBlock {
  param($word, $line, $cursor)
  $words = @($line.CommandElements | Select-Object -Skip 1 | Where-Object { $_.Extent.EndOffset -lt $cursor } |
    ForEach-Object { if ($_.Value) { $_.Value } else { $_.Extent.Text } })
  & $line.GetCommandName() complete powershell @words "=$word" 2>$null | ForEach-Object {
    $name, $help = $_ -split "`t", 2
    if (-not $help) { $help = $name }
    $text = if ($name -match "[\s']") { "'" + $name.Replace("'", "''") + "'" } else { $name }
    [System.Management.Automation.CompletionResult]::new($text, $name, 'ParameterValue', $help)
  }
}
)"},
};

}  // namespace

std::vector<std::string> shells() {
  std::vector<std::string> names;
  for (const Script& script : scripts) names.emplace_back(script.shell);
  return names;
}

std::string_view completionScript(std::string_view shell) {
  const auto* const found = std::find_if(scripts.begin(), scripts.end(),
                                         [&](const Script& script) { return script.shell == shell; });
  return found == scripts.end() ? std::string_view() : found->text;
}

}  // namespace velk::cli
