#include "oxm/textwriter.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "support/failures.h"
#include "support/tokenfiles.h"

namespace ombrix {
namespace {

using test::expectFailure;

const double kInfinity = std::numeric_limits<double>::infinity();
const double kNan = std::numeric_limits<double>::quiet_NaN();

/// The body of a file with one map, between its braces.
std::string inMap(const std::function<void(TextWriter&)>& action) {
  const std::string text = test::written<TextWriter>([&](TextWriter& writer) {
    writer.pushMap();
    action(writer);
    writer.popMap();
  });
  const std::string head = "<OXM01>\r\n\n{";
  EXPECT_EQ(text.substr(0, head.size()), head);
  EXPECT_EQ(text.back(), '}');
  return text.substr(head.size(), text.size() - head.size() - 1);
}

TEST(TextWriterTest, AFileBeginsWithNineBytes) {
  EXPECT_EQ(test::written<TextWriter>([](TextWriter&) {}), "<OXM01>\r\n");
}

TEST(TextWriterTest, AMapStartsOnALineOfItsOwn) {
  EXPECT_EQ(inMap([](TextWriter&) {}), "");
  EXPECT_EQ(inMap([](TextWriter& w) {
              for (int i = 0; i < 2; ++i) {
                w.pushMap();
                w.popMap();
              }
            }),
            "\n{},\n{}");
}

TEST(TextWriterTest, ValuesAreSeparatedByCommasAlone) {
  EXPECT_EQ(inMap([](TextWriter& w) {
              w.pushValue(1);
              w.pushValue(2);
            }),
            "1,2");
}

TEST(TextWriterTest, EveryTypeHasItsText) {
  EXPECT_EQ(inMap([](TextWriter& w) {
              w.pushValue(true);
              w.pushValue(false);
              w.pushTrue();
              w.pushFalse();
              w.pushNil();
              w.pushValue('x');
              w.pushValue("chars");
              w.pushValue(std::string("text"));
              w.pushValue(-5L);
              w.pushValue(std::numeric_limits<long long>::min());
              w.pushValue(std::numeric_limits<long long>::max());
            }),
            "true,false,true,false,nil,x,\"chars\",\"text\",-5,-9223372036854775808,"
            "9223372036854775807");
}

TEST(TextWriterTest, DoublesHaveSeventeenDigits) {
  EXPECT_EQ(inMap([](TextWriter& w) {
              for (const double value : {0.1, 3.0, -0.0, 1e-7, 1e300, 1.0 / 3.0, 5e-324}) {
                w.pushValue(value);
              }
            }),
            "0.10000000000000001,3,-0,9.9999999999999995e-08,1.0000000000000001e+300,"
            "0.33333333333333331,4.9406564584124654e-324");
}

TEST(TextWriterTest, NumbersDoNotHangOnTheLocale) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"}) std::setlocale(LC_ALL, name);
  EXPECT_EQ(inMap([](TextWriter& w) { w.pushValue(1234567.5); }), "1234567.5");
  std::setlocale(LC_ALL, before.c_str());
}

TEST(TextWriterTest, EveryPropertyIsANameAndItsValue) {
  EXPECT_EQ(inMap([](TextWriter& w) {
              w.pushProperty("a", "b");
              w.pushProperty("c", std::string("d"));
              w.pushProperty("e", true);
              w.pushProperty("f", 0.5);
              w.pushProperty("g", 1LL);
              w.pushProperty("h", 2L);
              w.pushProperty("i", 3);
              w.pushProperty("j", 'k');
              w.pushProperty("l");
              w.pushMap();
              w.popMap();
              w.pushProperty("m");
              w.pushNil();
            }),
            "\"a\"=\"b\",\"c\"=\"d\",\"e\"=true,\"f\"=0.5,\"g\"=1,\"h\"=2,\"i\"=3,\"j\"=k,"
            "\"l\"=\n{},\"m\"=nil");
}

TEST(TextWriterTest, AStringIsEscapedAndANameIsNot) {
  EXPECT_EQ(inMap([](TextWriter& w) { w.pushProperty("a\"b\\", "c\"d\\e\nf\t"); }),
            "\"a\"b\\\"=\"c\\\"d\\\\e\nf\t\"");
}

TEST(TextWriterTest, ANonFiniteDoubleDoesNotCountAsAnItem) {
  EXPECT_EQ(inMap([](TextWriter& w) {
              w.pushValue(kInfinity);
              w.pushValue(-kInfinity);
              w.pushValue(kNan);
              w.pushValue(1);
              w.pushValue(kInfinity);
              w.pushValue(2);
            }),
            "inf-infnan1,inf,2");
  // The name still waits for its value, so that not even a list item behind it gets a comma.
  EXPECT_EQ(inMap([](TextWriter& w) {
              w.pushProperty("a", kInfinity);
              w.pushProperty("b", 1);
            }),
            "\"a\"=inf\"b\"=1");
  EXPECT_EQ(inMap([](TextWriter& w) {
              w.pushProperty("a", 1);
              w.pushProperty("b", -kInfinity);
              w.pushValue(2);
            }),
            "\"a\"=1,\"b\"=-inf2");
}

TEST(TextWriterTest, NothingStandsOutsideAMap) {
  for (const int depth : {0, 1}) {
    test::written<TextWriter>([&](TextWriter& w) {
      for (int i = 0; i < depth; ++i) {
        w.pushMap();
        w.popMap();
      }
      expectFailure(1, "TextWriter::popMap", "There is no map to pop", [&] { w.popMap(); });
      expectFailure(1, "TextWriter::pushProperty", "Cannot push a property outside a map",
                    [&] { w.pushProperty("a"); });
      expectFailure(1, "TextWriter::pushProperty", "Cannot push a property outside a map",
                    [&] { w.pushProperty("a", 1); });
      for (const std::function<void()>& push : {std::function<void()>([&] { w.pushValue(1); }),
                                                std::function<void()>([&] { w.pushValue(kNan); }),
                                                std::function<void()>([&] { w.pushValue("a"); }),
                                                std::function<void()>([&] { w.pushNil(); })}) {
        expectFailure(1, "TextWriter::beforeValue", "Cannot push a value outside a map", push);
      }
    });
  }
}

TEST(TextWriterTest, CompressesTheSameBytes) {
  const auto action = [](TextWriter& w) {
    w.pushMap();
    w.pushProperty("a", 1);
    w.popMap();
  };
  const test::TemporaryFile packed(test::written<TextWriter>(action, true), ".gz");
  EXPECT_EQ(test::inflatedBytesOf(packed.path()), test::written<TextWriter>(action));
}

}  // namespace
}  // namespace ombrix
