#include "cli/shared/failure.h"

#include <iostream>

#include "cli/shared/json.h"

namespace velk::cli {

namespace {

constexpr const char* codeOf(ExitStatus status) {
  switch (status) {
    case badResult:
      return "refused";
    case wrongUsage:
      return "usage";
    case noLink:
      return "link";
    case badFile:
      return "file";
    case interrupted:
      return "interrupted";
    case success:
    case unchanged:
    case runtimeError:
      break;
  }
  return "runtime";
}

}  // namespace

void tell(std::string_view program, const Failure& failure, bool asJson) {
  if (!asJson) {
    std::cerr << program << ": " << failure.what() << '\n';
    return;
  }
  Json error{{"code", codeOf(failure.status)}, {"status", static_cast<int>(failure.status)}};
  if (failure.result) error["result"] = *failure.result;
  error["text"] = failure.what();
  Json line = Json::object();
  line["error"] = std::move(error);
  std::cerr << line << '\n';
}

}  // namespace velk::cli
