#include "oxm/binaryreader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "oxm/binarywriter.h"
#include "support/failures.h"
#include "support/tokenfiles.h"

namespace ombrix {
namespace {

using test::expectFailure;

const char* const kReadError = "Error while reading file.";

/// A reader over a file with these tokens.
class Binary : public test::ReaderOf<BinaryReader> {
public:
  explicit Binary(const std::string& tokens) : test::ReaderOf<BinaryReader>("<OXB01>" + tokens) {}
};

template <std::size_t size>
std::string bytes(const char (&literal)[size]) {
  return std::string(literal, size - 1);
}

TEST(BinaryReaderTest, TheHeaderIsSevenBytes) {
  for (const std::string header : {"", "<OXB01", "<OXB02>", "<OXM01>"}) {
    const test::TemporaryFile file(header, ".oxb");
    expectFailure(1, "BinaryReader::readHeader",
                  "The provided file is not recognized (wrong magic number)",
                  [&] { BinaryReader(file.path()); });
  }
}

TEST(BinaryReaderTest, ReadsWhatTheWriterWrites) {
  const double infinity = std::numeric_limits<double>::infinity();
  const std::vector<long long> integers = {0,
                                           127,
                                           128,
                                           -128,
                                           -129,
                                           32767,
                                           -32769,
                                           32768,
                                           2147483648LL,
                                           -2147483649LL,
                                           std::numeric_limits<long long>::min()};
  const std::vector<double> doubles = {0.0, 3.0, 0.1, infinity, -infinity};
  const std::string written = test::written<BinaryWriter>([&](BinaryWriter& w) {
    w.pushMap();
    for (const long long value : integers) w.pushProperty("integer", value);
    for (const double value : doubles) w.pushValue(value);
    w.pushValue(std::numeric_limits<double>::quiet_NaN());
    w.pushValue("quotes \" and \\ and \n survive");
    w.pushValue(true);
    w.pushFalse();
    w.pushNil();
    w.popMap();
  });
  test::ReaderOf<BinaryReader> r(written);
  r->nextMapStart();
  std::string name;
  for (const long long value : integers) {
    EXPECT_EQ(r->nextProperty(name), "integer");
    EXPECT_TRUE(r->isLongLong());
    EXPECT_EQ(r->isInt(), value == static_cast<int>(value));
    EXPECT_EQ(r->isChar(), value == static_cast<signed char>(value));
    EXPECT_EQ(r->nextLongLong(), value);
  }
  for (const double value : doubles) EXPECT_EQ(r->nextDouble(), value);
  EXPECT_TRUE(std::isnan(r->nextDouble()));
  EXPECT_EQ(r->nextString(), "quotes \" and \\ and \n survive");
  EXPECT_TRUE(r->isBool());
  r->nextTrue();
  EXPECT_FALSE(r->nextBool());
  r->nextNil();
  r->nextMapEnd();
  EXPECT_FALSE(r->hasNext());
}

TEST(BinaryReaderTest, EveryWidthOfAnIntegerWillDo) {
  Binary r(
      bytes("\xa0\x05\xa1\x05\0\xa2\x05\0\0\0\xa3\x05\0\0\0\0\0\0\0\xa3\xff\xff\xff\xff\xff"
            "\xff\xff\xff"));
  for (int i = 0; i < 4; ++i) {
    EXPECT_TRUE(r->isChar());
    EXPECT_TRUE(r->isInt());
    EXPECT_TRUE(r->isLong());
    EXPECT_EQ(r->nextInt(), 5);
  }
  EXPECT_EQ(r->nextChar(), -1);
}

TEST(BinaryReaderTest, AFileMayEndBetweenTokens) {
  for (const std::string& tokens : {bytes(""), bytes("\x01"
                                                     "a\0")}) {
    Binary r(tokens);
    EXPECT_FALSE(r->hasNext());
    EXPECT_TRUE(r->isValue());
    expectFailure(1, "BinaryReader::checkType",
                  "Unexpected token. Token expected : 'open-map', token id in cache : 0",
                  [&] { r->nextMapStart(); });
  }
}

TEST(BinaryReaderTest, EveryWrongKindIsNamedWithItsTag) {
  Binary r("\x10\xc0\xc1");
  const auto expect = [&](const char* word, int tag, const std::function<void()>& action) {
    expectFailure(1, "BinaryReader::checkType",
                  "Unexpected token. Token expected : '" + std::string(word) +
                      "', token id in cache : " + std::to_string(tag),
                  action);
  };
  std::string name;
  const std::string expected = "a";
  expect("value", 16, [&] { r->nextValue(); });
  r->nextMapStart();
  expect("open-map", 192, [&] { r->nextMapStart(); });
  expect("end-map", 192, [&] { r->nextMapEnd(); });
  expect("char", 192, [&] { r->nextChar(); });
  expect("int", 192, [&] { r->nextInt(); });
  expect("long", 192, [&] { r->nextLong(); });
  expect("long long", 192, [&] { r->nextLongLong(); });
  expect("double", 192, [&] { r->nextDouble(); });
  expect("bool", 192, [&] { r->nextBool(); });
  expect("true", 192, [&] { r->nextTrue(); });
  expect("false", 192, [&] { r->nextFalse(); });
  expect("string", 192, [&] { r->nextString(); });
  expect("property", 192, [&] { r->nextProperty(name); });
  expect("property", 192, [&] { r->nextProperty(expected); });
  r->nextNil();
  expect("nil", 193, [&] { r->nextNil(); });
}

TEST(BinaryReaderTest, TheTagInAMessageIsThatOfTheFile) {
  Binary cached(
      bytes("\x01"
            "a\0\x13\0\0"));
  expectFailure(1, "BinaryReader::checkType",
                "Unexpected token. Token expected : 'string', token id in cache : 19",
                [&] { cached->nextString(); });
  Binary narrow("\xa0\x01");
  expectFailure(1, "BinaryReader::checkType",
                "Unexpected token. Token expected : 'nil', token id in cache : 160",
                [&] { narrow->nextNil(); });
}

TEST(BinaryReaderTest, APropertyExpectedIsConsumedBeforeItsNameIsCompared) {
  Binary r(
      bytes("\x12"
            "found\0\xc0"));
  const std::string expected = "wanted";
  expectFailure(1, "BinaryReader::nextProperty",
                "Unexpected property. Expected property 'wanted'. Property found 'found'",
                [&] { r->nextProperty(expected); });
  r->nextNil();
}

TEST(BinaryReaderTest, AnIndexBeyondTheCacheIsRefused) {
  for (const std::string& tokens : {bytes("\x13\0\0"), bytes("\xd1\0\0"),
                                    bytes("\x01"
                                          "a\0\xd1\x01\0"),
                                    bytes("\x01"
                                          "a\0\xd1\xff\xff"),
                                    bytes("\x01"
                                          "a\0\x13\0\x80")}) {
    Binary r(tokens);
    expectFailure(1, "BinaryReader::next", "File is corrupted : wrong string cache index",
                  [&] { r->hasNext(); });
  }
}

TEST(BinaryReaderTest, AllEntriesOfTheCacheWork) {
  constexpr int kNbEntries = 65534;
  const std::string written = test::written<BinaryWriter>([](BinaryWriter& w) {
    for (int i = 0; i < kNbEntries + 2; ++i) w.pushValue(std::to_string(i));
    for (int i = kNbEntries + 1; i >= 0; --i) w.pushProperty(std::to_string(i));
  });
  test::ReaderOf<BinaryReader> r(written);
  for (int i = 0; i < kNbEntries + 2; ++i) ASSERT_EQ(r->nextString(), std::to_string(i));
  std::string name;
  for (int i = kNbEntries + 1; i >= 0; --i) ASSERT_EQ(r->nextProperty(name), std::to_string(i));
}

TEST(BinaryReaderTest, MoreDefinitionsThanIndicesAreNoFailure) {
  std::string tokens;
  for (int i = 0; i < 70000; ++i) tokens += bytes("\x01\0");
  Binary r(tokens + "\xd1\xff\xff");
  EXPECT_EQ(r->nextString(), "");
}

TEST(BinaryReaderTest, EveryOtherTagIsRefused) {
  const std::string known = bytes("\x01\x10\x11\x12\x13\xa0\xa1\xa2\xa3\xb0\xc0\xc1\xc2\xd0\xd1");
  for (int tag = 0; tag < 256; ++tag) {
    const std::string byte(1, static_cast<char>(tag));
    if (known.find(byte) != std::string::npos) continue;
    Binary r(byte);
    expectFailure(1, "BinaryReader::next", "File is corrupted : wrong value type",
                  [&] { r->hasNext(); });
  }
}

TEST(BinaryReaderTest, TheEndInsideATokenIsAReadError) {
  for (const std::string& token :
       {bytes("\x01"
              "ab\0"),
        bytes("\x12"
              "ab\0"),
        bytes("\xd0"
              "ab\0"),
        bytes("\x01\0\x13\0\0"), bytes("\x01\0\xd1\0\0"), bytes("\xa0\0"), bytes("\xa1\0\0"),
        bytes("\xa2\0\0\0\0"), bytes("\xa3\0\0\0\0\0\0\0\0"), bytes("\xb0\0\0\0\0\0\0\0\0")}) {
    const std::size_t start = token[1] == 0 && token.size() > 2 && token[0] == 1 ? 3 : 1;
    for (std::size_t size = start; size < token.size(); ++size) {
      Binary r(token.substr(0, size));
      expectFailure(1, "GzipIstream::read", kReadError, [&] { r->hasNext(); });
    }
    Binary whole(token);
    whole->hasNext();
  }
}

TEST(BinaryReaderTest, SkipEndsAtTheEndOfTheInput) {
  for (const std::string& tokens : {bytes(""), bytes("\x10"),
                                    bytes("\x10\x12"
                                          "a\0\x10\x11")}) {
    Binary r(tokens);
    expectFailure(1, "GzipIstream::read", kReadError, [&] { r->skip(); });
  }
}

TEST(BinaryReaderTest, SkipsAMillionLevels) {
  const int depth = 1000000;
  Binary r(std::string(depth, '\x10') + std::string(depth, '\x11') + "\xc0");
  r->skip();
  r->nextNil();
}

}  // namespace
}  // namespace ombrix
