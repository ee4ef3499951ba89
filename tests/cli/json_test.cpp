#include "cli/json.h"

#include <gtest/gtest.h>

#include <sstream>

namespace velk::cli {
namespace {

Json parse(const std::string& text) {
  std::istringstream in(text);
  return Json::parse(in);
}

TEST(Json, PrintsAsItIsWritten) {
  const Json json{{"z", 5},
                  {"a", {1, 2}},
                  {"one", {{"k", nullptr}}},
                  {"text", "a\"\\\n\x01\xc3\xa9"},
                  {"half", 0.5},
                  {"bytes", Json::array()},
                  {"none", Json::object()},
                  {"yes", true}};
  EXPECT_EQ(json.dump(), R"({"z":5,"a":[1,2],"one":{"k":null},"text":"a\"\\\n\u0001é","half":0.5,)"
                         R"("bytes":[],"none":{},"yes":true})");
  EXPECT_EQ(parse(json.dump()).dump(), json.dump());
  EXPECT_EQ((Json{{"a", {1}}}).dump(1), "{\n \"a\": [\n  1\n ]\n}");
  EXPECT_EQ(Json("\xff").dump(), "\"\xef\xbf\xbd\"") << "no UTF-8";
}

std::string refusal(const std::string& text, void (*use)(const Json&)) {
  try {
    use(parse(text));
  } catch (const JsonError& error) {
    return error.what();
  }
  return "none";
}

TEST(Json, ReadsNothingThatIsNotThere) {
  const auto asByte = [](const Json& json) { static_cast<void>(json.at("n").get<std::uint8_t>()); };
  const auto asText = [](const Json& json) { static_cast<void>(json.at("n").get<std::string>()); };
  EXPECT_EQ(parse(R"({"n":255})").at("n").get<std::uint8_t>(), 255);
  EXPECT_EQ(refusal(R"({"n":256})", asByte), "a number from 0 to 255 is expected, not 256");
  EXPECT_EQ(refusal(R"({"n":-1})", asByte), "a number from 0 to 255 is expected, not -1");
  EXPECT_EQ(refusal(R"({"n":1.0})", asByte), "a whole number is expected, not a number");
  EXPECT_EQ(refusal(R"({"n":18446744073709551615})", asByte), "a whole number is expected, not a number");
  EXPECT_EQ(refusal(R"({"n":7})", asText), "a text is expected, not a whole number");
  EXPECT_EQ(refusal(R"({})", asText), "there is no \"n\"");
  EXPECT_EQ(refusal("[7]", asText), "an object is expected, not an array");
  EXPECT_EQ(refusal("\n{\"n\"", asText).substr(0, 31), "parse error at line 2, column 5");
}

TEST(Json, RefusesEndlessNesting) {
  const auto ignore = [](const Json& /*json*/) {};
  EXPECT_EQ(refusal(std::string(60, '[') + std::string(60, ']'), ignore), "none");
  EXPECT_EQ(refusal(std::string(1000000, '['), ignore), "it is nested more than 64 deep");
}

}  // namespace
}  // namespace velk::cli
