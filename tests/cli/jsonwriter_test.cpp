#include "cli/jsonwriter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>

namespace ombrix::cli {
namespace {

std::string textOf(const auto& content) {
  JsonWriter json;
  json.value(content);
  return json.getText();
}

TEST(JsonWriter, SeparatesMembersAndItems) {
  JsonWriter json;
  json.beginObject();
  json.member("a", 1);
  json.key("list");
  json.beginArray();
  for (int i = 0; i < 2; ++i) {
    json.beginObject();
    json.member("b", i == 0);
    json.member("c", "x");
    json.endObject();
  }
  json.endArray();
  json.key("inner");
  json.beginObject();
  json.key("none");
  json.beginArray();
  json.endArray();
  json.key("some");
  json.beginArray();
  json.value(1);
  json.value(2);
  json.endArray();
  json.endObject();
  json.endObject();
  EXPECT_EQ(json.getText(),
            "{\n\"a\": 1,\n\"list\": [\n{\"b\": true, \"c\": \"x\"},\n{\"b\": false, \"c\": \"x\"}"
            "],\n\"inner\": {\"none\": [], \"some\": [1, 2]}}\n");
}

TEST(JsonWriter, WritesIntegersWhole) {
  EXPECT_EQ(textOf(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(textOf(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
}

TEST(JsonWriter, WritesDoublesThatReadBackTheSame) {
  EXPECT_EQ(textOf(0.1), "0.1");
  EXPECT_EQ(textOf(3.0), "3");
  for (double number : {1.0 / 3, 1e300, 5e-324, -123456.789, 0.1 + 0.2}) {
    EXPECT_EQ(std::strtod(textOf(number).c_str(), nullptr), number);
  }
}

TEST(JsonWriter, WritesWhatIsNoNumberAsText) {
  EXPECT_EQ(textOf(std::numeric_limits<double>::quiet_NaN()), "\"nan\"");
  EXPECT_EQ(textOf(std::numeric_limits<double>::infinity()), "\"inf\"");
  EXPECT_EQ(textOf(-std::numeric_limits<double>::infinity()), "\"-inf\"");
}

TEST(JsonWriter, EscapesQuotesBackslashesAndControls) {
  EXPECT_EQ(textOf("a\"b\\c"), R"("a\"b\\c")");
  EXPECT_EQ(textOf("\n\t\x1f\x7f"), R"("\u000a\u0009\u001f\u007f")");
  EXPECT_EQ(textOf(std::string_view("\0", 1)), R"("\u0000")");
}

TEST(JsonWriter, KeepsCharactersOfUtf8) {
  for (const char* text : {"\u00e9", "\u0800", "\ud7ff", "\uffff", "\U00010000", "\U0010ffff"}) {
    EXPECT_EQ(textOf(text), "\"" + std::string(text) + "\"");
  }
}

TEST(JsonWriter, ReplacesBytesThatAreNoUtf8) {
  const std::string mark = "\\ufffd";
  EXPECT_EQ(textOf("a\xff-b"), "\"a" + mark + "-b\"");
  EXPECT_EQ(textOf("\xc3"), "\"" + mark + "\"") << "breaks off";
  EXPECT_EQ(textOf("\xc0\x80"), "\"" + mark + mark + "\"") << "overlong";
  EXPECT_EQ(textOf("\xe0\x9f\xbf"), "\"" + mark + mark + mark + "\"") << "overlong";
  EXPECT_EQ(textOf("\xed\xa0\x80"), "\"" + mark + mark + mark + "\"") << "surrogate";
  EXPECT_EQ(textOf("\xf0\x8f\xbf\xbf"), "\"" + mark + mark + mark + mark + "\"") << "overlong";
  EXPECT_EQ(textOf("\xf4\x90\x80\x80"), "\"" + mark + mark + mark + mark + "\"") << "beyond";
  EXPECT_EQ(textOf("\xe2\x82x"), "\"" + mark + mark + "x\"");
}

}  // namespace
}  // namespace ombrix::cli
