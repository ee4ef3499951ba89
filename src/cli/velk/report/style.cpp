#include "cli/velk/report/style.h"

#include <array>
#include <string_view>

namespace velk::cli {
namespace {

struct Colour {
  std::string_view name;
  std::string_view light;
  std::string_view dark;
};

// What is written in a colour stands on paper or panel, "on" stands on marks: each pair has a contrast of 4.5.
constexpr std::array palette{
    Colour{"ink", "#1b2027", "#e7eaef"},     Colour{"soft", "#525c68", "#a9b3bf"},
    Colour{"paper", "#ffffff", "#13171c"},   Colour{"panel", "#f2f5f8", "#1d232a"},
    Colour{"line", "#cfd6de", "#39424d"},    Colour{"time", "#1158a5", "#7ab5ff"},
    Colour{"event", "#9a4600", "#ffb26b"},   Colour{"on", "#ffffff", "#10141a"},
    Colour{"added", "#0f6a2c", "#79dd9c"},   Colour{"removed", "#a5122b", "#ff9cab"},
    Colour{"changed", "#75500a", "#ecc878"},
};

// No rule may hold what a page escapes: & < > and quotes.

/// Of pictures, in the page and alone.
constexpr std::string_view pictureRules =
    "svg{font:11px system-ui,sans-serif;color-scheme:light dark}"
    "text{fill:var(--ink)}.h{font-weight:bold}.s{fill:var(--soft)}.m{text-anchor:middle}.e{text-anchor:end}"
    ".r{fill:none;stroke:var(--line)}.b{fill:var(--panel);stroke:var(--line)}"
    ".l{fill:none;stroke:var(--time);stroke-width:1.5}.k{fill:none;stroke:var(--ink);stroke-width:1.5}"
    ".t{fill:var(--time)}.v{fill:var(--event)}.n{fill:var(--on);font-weight:bold}"
    ".was .t,.was .v{fill:none;stroke-dasharray:2 2}.was .t{stroke:var(--time)}.was .v{stroke:var(--event)}"
    ".was .n{fill:var(--ink)}.was .l{stroke-dasharray:3 3}.was .w{fill:var(--removed)}"
    ".is .w{fill:var(--added)}.w{font-weight:bold}.p{fill:var(--paper)}";

constexpr std::string_view pageRules =
    "*{box-sizing:border-box}"
    "html{color-scheme:light dark;scroll-padding-top:1rem}"
    "body{margin:0;background:var(--paper);color:var(--ink);font:1rem/1.5 system-ui,sans-serif;"
    "overflow-wrap:break-word}"
    "a{color:var(--time)}a:focus-visible{outline:3px solid var(--event);outline-offset:2px}"
    ".skip{position:absolute;left:-99rem}.skip:focus{left:1rem;top:1rem;padding:.5rem 1rem;"
    "background:var(--paper);z-index:1}"
    "header,nav,main,footer{padding:0 1rem}header{padding-top:1.5rem}"
    "h1{font-size:2rem;line-height:1.2;margin:0 0 .25rem}"
    "h2{font-size:1.35rem;line-height:1.3;margin:0 0 .25rem}"
    "p{margin:.25rem 0 .75rem;max-width:44rem}"
    "p.intro,.from,footer{color:var(--soft)}"
    "section{padding-top:1.5rem;margin-top:1.5rem;border-top:1px solid var(--line)}"
    "nav ol{list-style:none;margin:.75rem 0 0;padding:0;display:flex;flex-wrap:wrap;gap:.25rem 1.25rem}"
    "nav a{display:inline-block;padding:.25rem 0}nav span{color:var(--soft);font-size:.875rem}"
    "table{border-collapse:collapse;width:100%;font-size:.9375rem}"
    "th,td{text-align:left;vertical-align:top;padding:.4rem .75rem .4rem 0;border-bottom:1px solid "
    "var(--line)}"
    "thead th{color:var(--soft);font-weight:600;font-size:.8125rem;border-bottom-width:2px}"
    "tbody th{font-weight:600;min-width:9rem}thead{display:table-header-group}tr{break-inside:avoid}"
    "tr:has(td:last-child "
    ".part:nth-child(12)){break-inside:auto}td{orphans:3;widows:3}"
    "h2,p.intro{break-inside:avoid;break-after:avoid}.lanes{break-before:avoid}"
    ".part{display:inline-block;background:var(--panel);border-radius:.25rem;padding:0 .4rem;"
    "margin:.1rem .2rem .1rem 0;max-width:100%}.part .name{color:var(--soft)}"
    ".lanes{display:grid;gap:.75rem 2rem;grid-template-columns:repeat(auto-fill,minmax(min(100%,19rem),1fr));"
    "list-style:none;margin:.5rem 0 1.25rem;padding:0}"
    ".lanes li{break-inside:avoid}.lanes svg{display:block;width:100%;max-width:30rem}"
    ".key svg{height:1em;width:1.5em;vertical-align:-.1em}"
    "del{color:var(--removed)}ins{color:var(--added);text-decoration:none;border-bottom:2px solid}"
    ".fate{display:inline-block;font-size:.75rem;font-weight:700;border:1px solid;border-radius:.25rem;"
    "padding:0 .35rem;margin-left:.4rem}"
    ".added .fate{color:var(--added)}.removed .fate{color:var(--removed)}.changed .fate{color:var(--changed)}"
    ".removed th span{text-decoration:line-through}.removed th .fate{text-decoration:none}"
    "footer{margin-top:2rem;padding-bottom:2rem;font-size:.875rem}"
    "@media screen and (max-width:40rem){thead{position:absolute;left:-99rem}th::before{font-weight:400}"
    "table,tbody,tr,th,td{display:block}tr{padding:.6rem 0;border-bottom:1px solid var(--line)}"
    "th,td{border:0;padding:.1rem 0}td:empty{display:none}"
    "th::before,td::before{content:attr(data-h);color:var(--soft);font-size:.8125rem;margin-right:.5rem}}"
    "@media screen and (min-width:72rem){body{display:grid;max-width:96rem;margin:0 auto;"
    "grid-template-columns:15rem minmax(0,1fr)}header,footer{grid-column:1/3}"
    "nav{position:sticky;top:0;align-self:start;max-height:100vh;overflow:auto;padding-top:1.5rem}"
    "nav ol{display:block}}"
    "@media print,(min-width:40.01rem){#outputs th{width:16%}#outputs td{width:11%}#outputs "
    "td:nth-child(3){width:35%}"
    "#outputs td:nth-child(4){width:38%}}"
    "@page{size:A4;margin:15mm 14mm}"
    "@media print{body{font-size:9.5pt}table{font-size:8.5pt;line-height:1.35}th,td{padding:.2rem .75rem "
    ".2rem 0}header,nav,main,footer{padding:0}"
    "h1{font-size:20pt}h2{font-size:14pt}.skip{display:none}section{margin-top:1rem;padding-top:1rem}"
    ".lanes{grid-template-columns:1fr 1fr;gap:.4rem 1.5rem}a{color:inherit;text-decoration:none}"
    ".part{border:1px solid var(--line)}tbody th{min-width:0}a:focus-visible{outline:none}}";

std::string variables(std::string_view Colour::*scheme) {
  std::string text = ":root{";
  for (const Colour& colour : palette) {
    text.append("--").append(colour.name).append(":").append(colour.*scheme).append(";");
  }
  return text + "}";
}

// On paper all is light, whatever the screen is.
std::string whenDark(const std::string& rules) {
  return "@media screen and (prefers-color-scheme:dark){" + rules + "}";
}

/// The rules with colours in place of variables, which not every program that shows pictures knows.
std::string resolved(std::string_view rules, std::string_view Colour::*scheme) {
  std::string text(rules);
  for (const Colour& colour : palette) {
    const std::string variable = "var(--" + std::string(colour.name) + ")";
    for (auto at = text.find(variable); at != std::string::npos; at = text.find(variable, at)) {
      text.replace(at, variable.size(), colour.*scheme);
    }
  }
  return text;
}

}  // namespace

std::string pageStyle() {
  return variables(&Colour::light) + whenDark(variables(&Colour::dark)) + std::string(pageRules) +
         std::string(pictureRules);
}

std::string pictureStyle() {
  return resolved(pictureRules, &Colour::light) + whenDark(resolved(pictureRules, &Colour::dark));
}

}  // namespace velk::cli
