#include "cli/shared/nearest.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace velk::cli {

namespace {

std::string inSmallLetters(std::string_view text) {
  std::string small(text);
  for (char& c : small) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return small;
}

/// How many characters were left out, put in, taken for another or swapped with their neighbour.
std::size_t slipsBetween(const std::string& a, const std::string& b) {
  std::vector<std::size_t> before;
  std::vector<std::size_t> last(b.size() + 1);
  std::iota(last.begin(), last.end(), 0);
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::vector<std::size_t> row(b.size() + 1, i);
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t other = a[i - 1] == b[j - 1] ? 0 : 1;
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + other});
      const bool isSwap = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (isSwap) row[j] = std::min(row[j], before[j - 2] + 1);
    }
    before = std::exchange(last, std::move(row));
  }
  return last.back();
}

}  // namespace

std::vector<std::string> nearest(std::string_view typed, std::span<const std::string> words) {
  constexpr std::size_t most = 3;
  const std::string wanted = inSmallLetters(typed);
  std::size_t fewest = std::max<std::size_t>(1, wanted.size() / 3);
  std::vector<std::string> found;
  std::vector<std::string> begun;
  for (const std::string& word : words) {
    const std::string small = inSmallLetters(word);
    if (wanted.size() > 1 && small.starts_with(wanted)) begun.push_back(word);
    const std::size_t slips = slipsBetween(wanted, small);
    if (slips > fewest || slips >= std::max(wanted.size(), small.size())) continue;
    if (slips < fewest) found.clear();
    fewest = slips;
    found.push_back(word);
  }
  if (found.empty() && begun.size() == 1) return begun;
  if (found.size() > most) found.clear();
  return found;
}

std::string didYouMean(std::string_view typed, std::span<const std::string> words,
                       const std::string& otherwise) {
  const auto found = nearest(typed, words);
  if (found.empty()) return otherwise;
  std::string text = "; did you mean ";
  for (std::size_t i = 0; i < found.size(); ++i) {
    const bool isLast = i + 1 == found.size();
    text += (i == 0 ? "" : isLast ? " or " : ", ") + ("\"" + found[i] + "\"");
  }
  return text + "?";
}

}  // namespace velk::cli
