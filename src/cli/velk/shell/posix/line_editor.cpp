#include "cli/velk/shell/line_editor.h"

#include <histedit.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cwchar>
#include <utility>

#include "cli/shared/interrupts.h"
#include "cli/shared/posix/input.h"
#include "cli/velk/shell/posix/history_file.h"

namespace velk::cli {
namespace {

constexpr int kept = 1000;  // lines

/// Characters of a text in UTF-8.
int charactersOf(std::string_view text) {
  return static_cast<int>(std::count_if(
      text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

void show(const Candidates& choices) {
  std::size_t width = 0;
  for (const Candidate& choice : choices) width = std::max(width, choice.word.size());
  std::string text = "\n";
  for (const Candidate& choice : choices) {
    text += choice.word;
    if (!choice.help.empty()) text.append(width - choice.word.size() + 2, ' ').append(choice.help);
    text += '\n';
  }
  std::fputs(text.c_str(), stderr);
}

}  // namespace

class LineEditor::System {
 public:
  System(std::string prompt, Complete complete)
      : prompt_(std::move(prompt)), complete_(std::move(complete)), history_(history_init()) {
    // Terminals show UTF-8, whatever the locale.
    std::setlocale(LC_CTYPE, "C.UTF-8");  // NOLINT(concurrency-mt-unsafe): no other thread runs
    editor_ = el_init("velk", stdin, stderr, stderr);
    el_set(editor_, EL_CLIENTDATA, this);
    el_set(editor_, EL_PROMPT, &promptOf);
    el_set(editor_, EL_EDITOR, "emacs");
    el_wset(editor_, EL_GETCFN, &readCharacter);
    HistEvent event{};
    history(history_, &event, H_SETSIZE, kept);
    history(history_, &event, H_SETUNIQUE, 1);
    el_set(editor_, EL_HIST, history, history_);
    el_source(editor_, nullptr);  // what the user has set in ~/.editrc
    // Of narrow words it makes copies, which nobody frees.
    el_wset(editor_, EL_ADDFN, L"velk-complete", L"Complete the word", &completed);
    el_set(editor_, EL_BIND, "^I", "velk-complete", nullptr);
    el_set(editor_, EL_BIND, "^R", "em-inc-search-prev", nullptr);
    for (const std::string& line : readHistory(kept)) remember(line);
  }
  ~System() {
    el_end(editor_);
    history_end(history_);
  }
  System(const System&) = delete;
  System& operator=(const System&) = delete;

  std::optional<std::string> read() {
    el_resize(editor_);
    // In front of the prompt: who sees it types at once, and a Ctrl-D that comes before that would be lost.
    el_set(editor_, EL_PREP_TERM, 1);
    int length = 0;
    const char* const typed = el_gets(editor_, &length);
    if (typed == nullptr) {
      std::fputs("\n", stderr);
      el_reset(editor_);
      return isInterrupted() ? std::optional<std::string>("") : std::nullopt;
    }
    std::string line(typed, static_cast<std::size_t>(length));
    line.erase(std::min(line.find('\n'), line.size()));
    if (line.find_first_not_of(" \t") != std::string::npos) remember(line);
    return line;
  }

 private:
  static System& of(EditLine* editor) {
    void* data = nullptr;
    el_get(editor, EL_CLIENTDATA, &data);
    return *static_cast<System*>(data);
  }

  static char* promptOf(EditLine* editor) { return of(editor).prompt_.data(); }

  /// As the editor's own, but a request to end that comes just in front of the wait ends it too.
  static int readCharacter(EditLine* /*editor*/, wchar_t* character) {
    constexpr auto isCut = static_cast<std::size_t>(-2);
    constexpr auto isNone = static_cast<std::size_t>(-1);
    std::mbstate_t state{};
    for (char byte = 0; system::readInput(&byte, 1) == 1;) {
      const std::size_t size = std::mbrtowc(character, &byte, 1, &state);
      if (size != isCut && size != isNone) return 1;
      if (size == isNone) state = {};
    }
    return 0;
  }

  static unsigned char completed(EditLine* editor, int /*key*/) {
    const LineInfo* const line = el_line(editor);
    const std::string before(line->buffer, line->cursor);
    const LineCompletion found = of(editor).complete_(before);
    if (!found.choices.empty()) {
      show(found.choices);
      return CC_REDISPLAY;
    }
    if (found.text.empty()) return CC_REFRESH_BEEP;
    el_deletestr(editor, charactersOf(std::string_view(before).substr(before.size() - found.replaced)));
    el_insertstr(editor, found.text.c_str());
    return CC_REFRESH;
  }

  void remember(const std::string& line) {
    HistEvent event{};
    history(history_, &event, H_ENTER, line.c_str());
  }

  std::string prompt_;
  Complete complete_;
  History* history_;
  EditLine* editor_ = nullptr;
};

LineEditor::LineEditor(const std::string& prompt, Complete complete)
    : system_(std::make_unique<System>(prompt, std::move(complete))) {}

LineEditor::~LineEditor() = default;

std::optional<std::string> LineEditor::read() {
  return system_->read();
}

void LineEditor::keep(const std::string& line) {
  appendHistory(line);
}

}  // namespace velk::cli
