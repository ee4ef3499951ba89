#include "cli/path/search_path.h"

#include <gtest/gtest.h>

namespace velk::cli {
namespace {

const std::wstring ours = LR"(C:\Program Files\VelkCom\x64)";

using Path = std::optional<std::wstring>;

TEST(SearchPathTest, AddedAndTakenBack) {
  const struct {
    Path before;
    std::wstring with;
  } rows[] = {
      {std::nullopt, ours},
      {L"", ours + L";"},
      {L"C:\\a", L"C:\\a;" + ours},
      {L"C:\\a;", L"C:\\a;" + ours + L";"},
      {L";;C:\\a;;%B%;", L";;C:\\a;;%B%;" + ours + L";"},
      {LR"("C:\a;b";C:\c)", LR"("C:\a;b";C:\c;)" + ours},
      {L"\"C:\\open", L"\"C:\\open;" + ours},
      {ours + L"\\more", ours + L"\\more;" + ours},
      {std::wstring(9000, L'x'), std::wstring(9000, L'x') + L";" + ours},
  };
  for (const auto& [before, with] : rows) {
    EXPECT_EQ(pathWith(before, ours), with);
    EXPECT_EQ(pathWithout(with, ours), before);
  }
}

TEST(SearchPathTest, WhatIsThereAlreadyIsNotAdded) {
  for (const wchar_t* const path :
       {LR"(C:\Program Files\VelkCom\x64)", LR"(c:\program files\velkcom\X64\;C:\a)",
        LR"(C:\a;"C:\Program Files\VelkCom\x64";)"}) {
    EXPECT_EQ(pathWith(path, ours), std::nullopt);
  }
  EXPECT_EQ(pathWith(LR"(C:\a;b)", LR"(C:\a;b)"), LR"(C:\a;b;"C:\a;b")");
}

TEST(SearchPathTest, WhatWasChangedSinceStays) {
  EXPECT_EQ(pathWithout(L"C:\\a;" + ours + L";C:\\b", ours), L"C:\\a;C:\\b");
  EXPECT_EQ(pathWithout(ours + L";C:\\b;", ours), L"C:\\b;");
  EXPECT_EQ(pathWithout(ours + L";C:\\b;" + ours, ours), ours + L";C:\\b");  // the last is ours
  EXPECT_EQ(pathWithout(L"C:\\a;C:\\b", ours), L"C:\\a;C:\\b");
  EXPECT_EQ(pathWithout(LR"(C:\a;"C:\b;c";C:\d)", LR"(C:\b;c)"), LR"(C:\a;C:\d)");
}

}  // namespace
}  // namespace velk::cli
