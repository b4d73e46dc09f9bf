#include "oxm/binarywriter.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>

#include "support/tokenfiles.h"

namespace ombrix {
namespace {

/// The bytes behind the magic.
std::string tokens(const std::function<void(BinaryWriter&)>& action) {
  const std::string bytes = test::written<BinaryWriter>(action);
  EXPECT_EQ(bytes.substr(0, 7), "<OXB01>");
  return bytes.substr(7);
}

/// A text of bytes, zeros included.
template <std::size_t size>
std::string bytes(const char (&literal)[size]) {
  return std::string(literal, size - 1);
}

std::string ofInteger(long long value) {
  return tokens([&](BinaryWriter& w) { w.pushValue(value); });
}

TEST(BinaryWriterTest, AFileBeginsWithSevenBytes) {
  EXPECT_EQ(test::written<BinaryWriter>([](BinaryWriter&) {}), "<OXB01>");
}

TEST(BinaryWriterTest, TokensWithoutPayloadAreOneByte) {
  EXPECT_EQ(tokens([](BinaryWriter& w) {
              w.pushMap();
              w.pushNil();
              w.pushFalse();
              w.pushTrue();
              w.pushValue(false);
              w.pushValue(true);
              w.popMap();
            }),
            "\x10\xc0\xc1\xc2\xc1\xc2\x11");
}

TEST(BinaryWriterTest, NestingIsNotChecked) {
  EXPECT_EQ(tokens([](BinaryWriter& w) {
              w.popMap();
              w.pushValue(1);
              w.pushProperty("a");
            }),
            bytes("\x11\xa0\x01\x01"
                  "a\0\x13\0\0"));
}

TEST(BinaryWriterTest, IntegersTakeTheSmallestWidth) {
  EXPECT_EQ(ofInteger(127), "\xa0\x7f");
  EXPECT_EQ(ofInteger(-128), "\xa0\x80");
  EXPECT_EQ(ofInteger(128), bytes("\xa1\x80\0"));
  EXPECT_EQ(ofInteger(-129), "\xa1\x7f\xff");
  EXPECT_EQ(ofInteger(32767), "\xa1\xff\x7f");
  EXPECT_EQ(ofInteger(-32768), bytes("\xa1\0\x80"));
  EXPECT_EQ(ofInteger(32768), bytes("\xa2\0\x80\0\0"));
  EXPECT_EQ(ofInteger(2147483647), "\xa2\xff\xff\xff\x7f");
  EXPECT_EQ(ofInteger(-2147483648LL), bytes("\xa2\0\0\0\x80"));
  EXPECT_EQ(ofInteger(2147483648LL), bytes("\xa3\0\0\0\x80\0\0\0\0"));
  EXPECT_EQ(ofInteger(-2147483649LL), "\xa3\xff\xff\xff\x7f\xff\xff\xff\xff");
  EXPECT_EQ(ofInteger(std::numeric_limits<long long>::min()), bytes("\xa3\0\0\0\0\0\0\0\x80"));
}

TEST(BinaryWriterTest, NarrowIntegersAndCharsAreWidenedWithTheirSign) {
  EXPECT_EQ(tokens([](BinaryWriter& w) {
              w.pushValue(-1);
              w.pushValue(-2L);
              w.pushValue('A');
              w.pushValue(static_cast<char>(-3));
            }),
            "\xa0\xff\xa0\xfe\xa0\x41\xa0\xfd");
}

TEST(BinaryWriterTest, DoublesAreTheirEightBytes) {
  EXPECT_EQ(tokens([](BinaryWriter& w) {
              w.pushValue(1.0);
              w.pushValue(-std::numeric_limits<double>::infinity());
            }),
            bytes("\xb0\0\0\0\0\0\0\xf0\x3f\xb0\0\0\0\0\0\0\xf0\xff"));
}

TEST(BinaryWriterTest, NamesAndStringsShareOneCache) {
  EXPECT_EQ(tokens([](BinaryWriter& w) {
              w.pushProperty("ab", "c");
              w.pushValue(std::string("ab"));
              w.pushProperty("c");
            }),
            bytes("\x01"
                  "ab\0\x13\0\0\x01"
                  "c\0\xd1\x01\0\xd1\0\0\x13\x01\0"));
}

TEST(BinaryWriterTest, StringsOfAtMostTwentyFiveBytesAreCached) {
  const std::string longest(25, 'x');
  const std::string tooLong(26, 'y');
  EXPECT_EQ(tokens([&](BinaryWriter& w) {
              for (int i = 0; i < 2; ++i) w.pushValue(longest);
              for (int i = 0; i < 2; ++i) w.pushValue(tooLong);
              for (int i = 0; i < 2; ++i) w.pushProperty(tooLong);
              w.pushProperty(longest);
            }),
            "\x01" + longest + bytes("\0\xd1\0\0\xd1\0\0") + "\xd0" + tooLong + bytes("\0\xd0") +
                tooLong + bytes("\0\x12") + tooLong + bytes("\0\x12") + tooLong +
                bytes("\0\x13\0\0"));
}

TEST(BinaryWriterTest, AFullCacheServesTheStringsThatItKnows) {
  const std::string all = tokens([](BinaryWriter& w) {
    for (int i = 0; i < 65535; ++i) w.pushValue(std::to_string(i));
    w.pushValue("0");
    w.pushValue("65533");
    w.pushValue("65534");
  });
  const std::string end = bytes(
      "\x01"
      "65533\0\xd1\xfd\xff\xd0"
      "65534\0\xd1\0\0\xd1\xfd\xff\xd0"
      "65534\0");
  EXPECT_EQ(all.substr(all.size() - end.size()), end);
}

TEST(BinaryWriterTest, AStringEndsAtItsFirstZero) {
  EXPECT_EQ(tokens([](BinaryWriter& w) { w.pushValue(std::string("a\0b", 3)); }),
            bytes("\x01"
                  "a\0\xd1\0\0"));
}

TEST(BinaryWriterTest, CompressesTheSameBytes) {
  const auto action = [](BinaryWriter& w) { w.pushProperty("a", 1); };
  const test::TemporaryFile packed(test::written<BinaryWriter>(action, true), ".gz");
  EXPECT_EQ(test::inflatedBytesOf(packed.path()), test::written<BinaryWriter>(action));
}

}  // namespace
}  // namespace ombrix
