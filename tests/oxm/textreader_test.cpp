#include "oxm/textreader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "support/failures.h"
#include "support/tokenfiles.h"

namespace ombrix {
namespace {

using test::expectFailure;

/// A reader over a file with this body, which begins on line 2.
class Text : public test::ReaderOf<TextReader> {
public:
  explicit Text(const std::string& body) : test::ReaderOf<TextReader>("<OXM01>\r\n" + body) {}
};

/// Expects that looking at the first token of a body fails.
void expectRefused(const std::string& body, const std::string& function,
                   const std::string& message) {
  SCOPED_TRACE(body);
  Text reader(body);
  expectFailure(1, "TextReader::" + function, message, [&] { reader->isValue(); });
}

TEST(TextReaderTest, TheHeaderIsSevenBytes) {
  const std::string message = "The provided file is not recognized (wrong magic number)";
  for (const std::string bytes : {"", "<OXM01", "<OXM02>", "<OXB01>", "<oxm01>", " <OXM01>"}) {
    const test::TemporaryFile file(bytes, ".oxm");
    expectFailure(1, "TextReader::readHeader", message, [&] { TextReader(file.path()); });
  }
  test::ReaderOf<TextReader> reader("<OXM01>{}");
  EXPECT_TRUE(reader->isMapStart());
}

TEST(TextReaderTest, AMissingFileIsNamed) {
  expectFailure(1, "GzipIstream::GzipIstream", "Cannot open file missing.oxm",
                [] { TextReader("missing.oxm"); });
}

TEST(TextReaderTest, ReadsEveryKindOfToken) {
  Text r(R"({"list"={1,-2,+3,0},"half"=0.5,"words"={true,false,nil},"text"="chars"})");
  r->nextMapStart();
  EXPECT_TRUE(r->isProperty("list"));
  EXPECT_FALSE(r->isProperty("lis"));
  EXPECT_FALSE(r->isValue());
  std::string name;
  EXPECT_EQ(r->nextProperty(name), "list");
  EXPECT_EQ(name, "list");
  r->nextMapStart();
  EXPECT_EQ(r->nextInt(), 1);
  EXPECT_EQ(r->nextLong(), -2);
  EXPECT_EQ(r->nextLongLong(), 3);
  EXPECT_EQ(r->nextChar(), 0);
  EXPECT_TRUE(r->isMapEnd());
  r->nextMapEnd();
  const std::string half = "half";
  r->nextProperty(half);
  EXPECT_TRUE(r->isDouble());
  EXPECT_FALSE(r->isLongLong());
  EXPECT_EQ(r->nextDouble(), 0.5);
  r->nextProperty(name);
  r->nextMapStart();
  EXPECT_TRUE(r->isTrue());
  EXPECT_TRUE(r->isBool());
  EXPECT_TRUE(r->nextBool());
  EXPECT_TRUE(r->isFalse());
  r->nextFalse();
  EXPECT_TRUE(r->isNil());
  r->nextNil();
  r->nextMapEnd();
  r->nextProperty(name);
  EXPECT_TRUE(r->isString());
  EXPECT_EQ(r->nextString(), "chars");
  r->nextMapEnd();
  EXPECT_FALSE(r->hasNext());
  EXPECT_TRUE(r->isValue());
}

TEST(TextReaderTest, IntegersKeepToTheRangeAskedFor) {
  Text r("{127,128,-129,2147483647,2147483648,-2147483649,9223372036854775807}");
  r->nextMapStart();
  EXPECT_TRUE(r->isChar());
  r->nextValue();
  EXPECT_FALSE(r->isChar());
  expectFailure(1, "TextReader::checkType", "At line 2: unexpected token, expecting 'char'",
                [&] { r->nextChar(); });
  r->nextValue();
  EXPECT_FALSE(r->isChar());
  r->nextValue();
  EXPECT_TRUE(r->isInt());
  EXPECT_TRUE(r->isLong());
  r->nextValue();
  EXPECT_FALSE(r->isInt());
  EXPECT_FALSE(r->isLong());
  expectFailure(1, "TextReader::checkType", "At line 2: unexpected token, expecting 'int'",
                [&] { r->nextInt(); });
  expectFailure(1, "TextReader::checkType", "At line 2: unexpected token, expecting 'long'",
                [&] { r->nextLong(); });
  EXPECT_EQ(r->nextLongLong(), 2147483648);
  EXPECT_FALSE(r->isInt());
  r->nextValue();
  EXPECT_EQ(r->nextLongLong(), std::numeric_limits<long long>::max());
}

TEST(TextReaderTest, EveryWrongKindIsNamedAndNotConsumed) {
  Text r("{nil}");
  const auto expect = [&](const char* word, const std::function<void()>& action) {
    expectFailure(1, "TextReader::checkType",
                  "At line 2: unexpected token, expecting '" + std::string(word) + "'", action);
  };
  std::string name;
  const std::string expected = "a";
  expect("value", [&] { r->nextValue(); });
  r->nextMapStart();
  expect("{", [&] { r->nextMapStart(); });
  expect("}", [&] { r->nextMapEnd(); });
  expect("char", [&] { r->nextChar(); });
  expect("int", [&] { r->nextInt(); });
  expect("long", [&] { r->nextLong(); });
  expect("long long", [&] { r->nextLongLong(); });
  expect("double", [&] { r->nextDouble(); });
  expect("bool", [&] { r->nextBool(); });
  expect("true", [&] { r->nextTrue(); });
  expect("false", [&] { r->nextFalse(); });
  expect("string", [&] { r->nextString(); });
  expect("property", [&] { r->nextProperty(name); });
  expect("property", [&] { r->nextProperty(expected); });
  r->nextNil();
  expect("nil", [&] { r->nextNil(); });
}

TEST(TextReaderTest, APropertyExpectedIsConsumedBeforeItsNameIsCompared) {
  Text r("\n\n{\"found\"=1}");
  r->nextMapStart();
  const std::string expected = "wanted";
  expectFailure(1, "TextReader::nextProperty",
                "At line 4: unexpected property 'found', expecting 'wanted'",
                [&] { r->nextProperty(expected); });
  EXPECT_EQ(r->nextInt(), 1);
}

TEST(TextReaderTest, CommasAndBlanksBetweenTokensAreSkippedAlike) {
  Text r(",,{ ,\t1,,\v2\f,\r\n , \"a\"=,3 , 4}");
  r->nextMapStart();
  EXPECT_EQ(r->nextInt(), 1);
  EXPECT_EQ(r->nextInt(), 2);
  std::string name;
  EXPECT_EQ(r->nextProperty(name), "a");
  EXPECT_EQ(r->nextInt(), 3);
  EXPECT_EQ(r->nextInt(), 4);
  r->nextMapEnd();
}

TEST(TextReaderTest, AnyBlanksMayStandBehindWordsAndQuotes) {
  Text r("{1 \t\n\v\f\r ,\"text\" \n\n , \"name\" \n\r=2 \n}");
  r->nextMapStart();
  EXPECT_EQ(r->nextInt(), 1);
  EXPECT_EQ(r->nextString(), "text");
  std::string name;
  EXPECT_EQ(r->nextProperty(name), "name");
  EXPECT_EQ(r->nextInt(), 2);
  r->nextMapEnd();
  // The five line feeds are counted.
  expectFailure(1, "TextReader::checkType", "At line 7: unexpected token, expecting 'int'",
                [&] { r->nextInt(); });
}

TEST(TextReaderTest, ABlankDoesNotSeparateWords) {
  expectRefused("1 2}", "readValue", "At line 2: unexpected character '2'");
  expectRefused("\"a\" \"b\"", "readString",
                "At line 2: unexpected character '34', expecting '=', '}' or ','");
  expectRefused("true{", "readValue", "At line 2: unexpected character '{'");
}

TEST(TextReaderTest, AMissingCommaBehindAMapIsTaken) {
  Text r("{{}{}\"a\"=1}");
  r->nextMapStart();
  r->skip();
  r->skip();
  EXPECT_TRUE(r->isProperty("a"));
}

TEST(TextReaderTest, IntegersAreToldByTheirForm) {
  Text r("{0,-0,-007,+5,-9223372036854775808,9223372036854775807}");
  r->nextMapStart();
  for (const long long expected : {0LL, 0LL, -7LL, 5LL, std::numeric_limits<long long>::min(),
                                   std::numeric_limits<long long>::max()}) {
    EXPECT_EQ(r->nextLongLong(), expected);
  }
}

TEST(TextReaderTest, DoublesAreToldByTheirForm) {
  Text r("{0.5,1e5,1.,.5,-2.5E-3,+1.5,inf,+inf,-inf,0.0,5e-324,1e-400}");
  r->nextMapStart();
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double expected :
       {0.5, 1e5, 1.0, 0.5, -0.0025, 1.5, infinity, infinity, -infinity, 0.0, 5e-324, 0.0}) {
    EXPECT_TRUE(r->isDouble());
    EXPECT_EQ(r->nextDouble(), expected);
  }
  Text nan("nan,");
  EXPECT_TRUE(std::isnan(nan->nextDouble()));
}

TEST(TextReaderTest, AWholeDoubleComesBackAsAnInteger) {
  Text r("{3}");
  r->nextMapStart();
  EXPECT_FALSE(r->isDouble());
  EXPECT_EQ(r->nextLongLong(), 3);
}

TEST(TextReaderTest, NumbersThatCannotBeCastFail) {
  const auto expectCast = [](const std::string& word, const std::string& function,
                             const std::string& message) {
    Text r(word + ",");
    expectFailure(6, function, message, [&] { r->isValue(); });
  };
  const std::string tail =
      "' to int (max value allowed : 9223372036854775807, min value allowed : "
      "-9223372036854775808).";
  for (const std::string word : {"-", "+", "9223372036854775808", "-9223372036854775809"}) {
    expectCast(word, "castToOxInt", "Cannot cast '" + word + tail);
  }
  for (const std::string word : {"1e999", "-1e999", "1e", "."}) {
    expectCast(word, "castToOxDouble", "Cannot cast '" + word + "' to double.");
  }
}

TEST(TextReaderTest, AWordThatMeansNothingIsNoTokenUntilItIsConsumed) {
  for (const std::string word : {"nope", "infinity", "truE", "007", "1.2.3", "1_0", "0x10"}) {
    SCOPED_TRACE(word);
    Text r("{" + word + ",1}");
    r->nextMapStart();
    EXPECT_FALSE(r->hasNext());
    EXPECT_TRUE(r->isValue());
    EXPECT_FALSE(r->isMapEnd());
    expectFailure(1, "TextReader::checkType", "At line 2: unexpected token, expecting 'int'",
                  [&] { r->nextInt(); });
    r->nextValue();
    EXPECT_EQ(r->nextInt(), 1);
  }
}

TEST(TextReaderTest, OtherFirstLettersAreRefused) {
  expectRefused("True,", "next", "At line 2: unexpected character 'T'");
  expectRefused("=", "next", "At line 2: unexpected character '='");
  expectRefused("\n\n:", "next", "At line 4: unexpected character ':'");
  expectRefused("\xe9", "next", "At line 2: unexpected character '\xe9'");
  expectRefused("fred:", "readValue", "At line 2: unexpected character ':'");
  expectRefused("fred\n\n:", "readValue", "At line 4: unexpected character ':'");
}

TEST(TextReaderTest, TheEndInsideATokenIsRefused) {
  expectRefused("12", "readValue", "At line 2: unexpected end-of-file");
  expectRefused("12 \n ", "readValue", "At line 3: unexpected end-of-file");
  expectRefused("\"abc", "readString", "At line 2: unexpected end-of-file, expecting '\"'");
  expectRefused("\"ab\nc", "readString", "At line 3: unexpected end-of-file, expecting '\"'");
  expectRefused("\"abc\"", "readString",
                "At line 2: unexpected end-of-file, expecting '=', '}' or ','");
  expectRefused("\"abc\\", "extractEscapedChar", "At line 2: unexpected end-of-file");
}

TEST(TextReaderTest, WhatMayFollowAStringIsTold) {
  expectRefused("\"abc\":", "readString",
                "At line 2: unexpected character '58', expecting '=', '}' or ','");
  expectRefused("\"abc\"\xff", "readString",
                "At line 2: unexpected character '255', expecting '=', '}' or ','");
}

TEST(TextReaderTest, AnEscapedCharacterIsFollowedByABackslash) {
  Text r(R"({"a\"b\\\'\b\f\n\r\t"})");
  r->nextMapStart();
  EXPECT_EQ(r->nextString(), "a\"\\b\\\\'\\\b\\\f\\\n\\\r\\\t\\");
}

TEST(TextReaderTest, OtherEscapesAreRefused) {
  expectRefused("\"\\x\"", "extractEscapedChar",
                "At line 2: '\\120' is not a valid escape sequence");
  expectRefused("\"\\\n\"", "extractEscapedChar",
                "At line 2: '\\10' is not a valid escape sequence");
}

TEST(TextReaderTest, StringsLoseTheirLineFeedsAndCountThem) {
  Text r("{\"a\n\nb\",?");
  r->nextMapStart();
  EXPECT_EQ(r->nextString(), "ab");
  expectFailure(1, "TextReader::next", "At line 4: unexpected character '?'",
                [&] { r->isValue(); });
}

TEST(TextReaderTest, TokensMayBeOfAnyLength) {
  for (const std::size_t length : {511U, 512U, 513U, 100000U}) {
    const std::string chars(length, 'x');
    const std::string digits = "0." + std::string(length, '0') + "5";
    Text r("{\"" + chars + "\"=" + digits + "}");
    r->nextMapStart();
    std::string name;
    EXPECT_EQ(r->nextProperty(name), chars);
    EXPECT_NEAR(r->nextDouble(), 0.0, 1e-100);
  }
}

TEST(TextReaderTest, SkipsOneItem) {
  Text r(R"({"a"={1,{"b"={},"c"="d"},nil,true,0.5,inf},"e"=nope,"f"=1})");
  r->nextMapStart();
  std::string name;
  for (const std::string expected : {"a", "e", "f"}) {
    EXPECT_EQ(r->nextProperty(name), expected);
    r->skip();
  }
  // What is no item is refused.
  expectFailure(1, "TextReader::checkType", "At line 2: unexpected token, expecting 'value'",
                [&] { r->skip(); });
}

TEST(TextReaderTest, SkipEndsAtTheEndOfTheInput) {
  for (const std::string body : {"", " ", "{", "{{},", "{\"a\"=", "{\"a\"={}"}) {
    SCOPED_TRACE(body);
    Text r(body);
    expectFailure(1, "TextReader::skip", "At line 2: unexpected end-of-file", [&] { r->skip(); });
  }
}

TEST(TextReaderTest, SkipsAMillionLevels) {
  const int depth = 1000000;
  Text r(std::string(depth, '{') + std::string(depth, '}') + "1,");
  r->skip();
  EXPECT_EQ(r->nextInt(), 1);
  Text cut(std::string(depth, '{'));
  expectFailure(1, "TextReader::skip", "At line 2: unexpected end-of-file", [&] { cut->skip(); });
}

}  // namespace
}  // namespace ombrix
