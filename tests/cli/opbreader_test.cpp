#include "cli/opbreader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "cli/inputerror.h"
#include "support/temporaryfile.h"

namespace ombrix::cli {
namespace {

using test::TemporaryFile;
using ::testing::ElementsAre;

OpbModel readText(const std::string& text) {
  const TemporaryFile file(text);
  return OpbReader::read(file.path());
}

/// The message of the refusal, with the file name taken off.
std::string refusalOf(const std::string& contents) {
  const TemporaryFile file(contents);
  try {
    OpbReader::read(file.path());
  } catch (const InputError& error) {
    const std::string text = error.what();
    EXPECT_TRUE(text.starts_with(file.path() + ":")) << text;
    return text.substr(file.path().size() + 1);
  }
  return "accepted";
}

/// A sum in the notation of the format.
std::string textOf(const OpbModel& model, const OpbSum& sum) {
  std::string text;
  for (std::size_t i = sum.firstTerm; i < sum.firstTerm + sum.nbTerms; ++i) {
    const OpbTerm& term = model.terms[i];
    text += std::to_string(term.coefficient);
    for (std::size_t j = 0; j < term.nbLiterals; ++j) {
      const OpbLiteral literal = model.literals[term.firstLiteral + j];
      text += (literal.isNegated() ? " ~" : " ") + model.names[literal.variable()];
    }
    text += " ; ";
  }
  return text;
}

TEST(OpbReader, ReadsAnObjectiveAndEveryRelation) {
  const OpbModel model = readText(
      "* #variable= 3 #constraint= 3\n"
      "min: +1 x1 -2 ~x2 ;\n"
      "+3 x1 +4 x3 >= 2 ;\n"
      "1 x1 1 x2 = 1 ;\n"
      "-1 x2 <= -0 ;\n");
  EXPECT_THAT(model.names, ElementsAre("x1", "x2", "x3"));
  EXPECT_TRUE(model.hasObjective);
  EXPECT_FALSE(model.isMaximized);
  EXPECT_EQ(textOf(model, model.objective), "1 x1 ; -2 ~x2 ; ");
  ASSERT_EQ(model.constraints.size(), 3U);
  EXPECT_EQ(textOf(model, model.constraints[0].sum), "3 x1 ; 4 x3 ; ");
  EXPECT_EQ(model.constraints[0].relation, OpbRelation::AtLeast);
  EXPECT_EQ(model.constraints[0].bound, 2);
  EXPECT_EQ(textOf(model, model.constraints[1].sum), "1 x1 ; 1 x2 ; ");
  EXPECT_EQ(model.constraints[1].relation, OpbRelation::Equal);
  EXPECT_EQ(model.constraints[1].bound, 1);
  EXPECT_EQ(model.constraints[2].relation, OpbRelation::AtMost);
  EXPECT_EQ(model.constraints[2].bound, 0);
}

TEST(OpbReader, ReadsProductsOfLiterals) {
  const OpbModel model = readText("max: +2 x1 ~x2 x3 ;\n+1 ~x1 x1 >= 0 ;\n");
  EXPECT_TRUE(model.isMaximized);
  EXPECT_EQ(textOf(model, model.objective), "2 x1 ~x2 x3 ; ");
  EXPECT_EQ(textOf(model, model.constraints[0].sum), "1 ~x1 x1 ; ");
}

TEST(OpbReader, AMissingObjectiveAndAnEmptyOneDiffer) {
  const OpbModel missing = readText("+1 x1 >= 1 ;\n");
  EXPECT_FALSE(missing.hasObjective);
  const OpbModel empty = readText("min: ;\n+1 x1 >= 1 ;\n");
  EXPECT_TRUE(empty.hasObjective);
  EXPECT_EQ(empty.objective.nbTerms, 0U);
}

TEST(OpbReader, AnObjectiveAloneIsAModel) {
  EXPECT_EQ(readText("min: +1 x1 ;").constraints.size(), 0U);
}

TEST(OpbReader, VariablesStandInTheOrderOfTheirNumbers) {
  const OpbModel model = readText("+1 x10 +1 b +1 x9 +1 x99999999999 +1 a +1 x2 >= 1 ;");
  EXPECT_THAT(model.names, ElementsAre("x2", "x9", "x10", "x99999999999", "b", "a"));
  EXPECT_EQ(textOf(model, model.constraints[0].sum),
            "1 x10 ; 1 b ; 1 x9 ; 1 x99999999999 ; 1 a ; 1 x2 ; ");
}

TEST(OpbReader, TheSameNameIsTheSameVariable) {
  const OpbModel model = readText("+1 x5 +1 y +1 x5000000 >= 1 ;\n+1 x5000000 +1 y +1 x5 >= 1 ;");
  EXPECT_EQ(model.names.size(), 3U);
}

TEST(OpbReader, ANumberWithALeadingZeroIsAnotherName) {
  EXPECT_THAT(readText("+1 x01 +1 x1 +1 x0 >= 1 ;").names, ElementsAre("x1", "x01", "x0"));
}

TEST(OpbReader, TheHeaderIsAHintOnly) {
  const OpbModel model = readText("* #variable= 1 #constraint= 900\n+1 x7 +1 x8 >= 1 ;\n");
  EXPECT_EQ(model.names.size(), 2U);
  EXPECT_EQ(model.constraints.size(), 1U);
}

TEST(OpbReader, CommentsStandOnLinesOfTheirOwn) {
  const OpbModel model = readText("*\n  * one\n+1 x1\n* two ; >= \n >= 1 ;\n* the last");
  EXPECT_EQ(model.constraints.size(), 1U);
  EXPECT_EQ(refusalOf("+1 x1 >= 1 ; * no\n"),
            "1:14: found \"*\", expected the coefficient that begins a constraint");
}

TEST(OpbReader, BlanksOfAnyKindSeparate) {
  const OpbModel model = readText("min:+1\tx1\r\n\r\n;+1 x1>=1;+1 x2<=1;\r\n");
  EXPECT_EQ(model.constraints.size(), 2U);
}

TEST(OpbReader, ReadsGzip) {
  const OpbModel model = readText(test::gzipped("min: +1 x1 ;\n+1 x1 >= 1 ;\n"));
  EXPECT_EQ(model.constraints.size(), 1U);
}

TEST(OpbReader, ReadsAcrossBlocks) {
  std::string text;
  constexpr int kConstraints = 20000;
  for (int i = 1; i <= kConstraints; ++i) {
    text +=
        "+" + std::to_string(i) + " x" + std::to_string(i) + " >= " + std::to_string(i) + " ;\n";
  }
  const OpbModel model = readText(text);
  ASSERT_EQ(model.constraints.size(), static_cast<std::size_t>(kConstraints));
  for (int i = 1; i <= kConstraints; ++i) {
    const auto position = static_cast<std::size_t>(i - 1);
    ASSERT_EQ(model.constraints[position].bound, i);
    ASSERT_EQ(model.names[position], "x" + std::to_string(i));
  }
}

TEST(OpbReader, ExtremeNumbersOf64BitsAreRead) {
  const OpbModel model = readText(
      "+9223372036854775807 x1 >= 0 ;\n-9223372036854775807 x1 <= 0 ;\n"
      "+1 x1 <= 9223372036854775806 ;\n");
  EXPECT_EQ(model.terms[0].coefficient, 9223372036854775807);
  EXPECT_EQ(model.terms[1].coefficient, -9223372036854775807);
  EXPECT_EQ(model.constraints[2].bound, 9223372036854775806);
}

TEST(OpbReader, NumbersBeyond64BitsAreRefused) {
  const std::string expected =
      ", expected an integer of 64 bits, from -9223372036854775808 to 9223372036854775807";
  EXPECT_EQ(refusalOf("+9223372036854775808 x1 >= 0 ;"),
            "1:1: found \"+9223372036854775808\"" + expected);
  EXPECT_EQ(refusalOf("+1 x1 >= -9223372036854775809 ;"),
            "1:10: found \"-9223372036854775809\"" + expected);
  EXPECT_EQ(refusalOf("min: +1 x1\n  -123456789012345678901234567890123456789012345 x2 ;"),
            "2:3: found \"-123456789012345678901234567890123456789...\"" + expected);
}

TEST(OpbReader, SumsThatCouldOverflowAreRefused) {
  const std::string refusal =
      "found a sum whose coefficients and bound add up, without their signs, to more than "
      "9223372036854775807, expected one whose values cannot overflow 64 bits";
  EXPECT_EQ(refusalOf("+1 x9 >= 1 ;\n +9223372036854775807 x1 +1 x2 >= 0 ;"), "2:2: " + refusal);
  EXPECT_EQ(refusalOf("+9223372036854775807 x1 -1 x2 >= 0 ;"), "1:1: " + refusal);
  EXPECT_EQ(refusalOf("+9223372036854775807 x1 >= 1 ;"), "1:1: " + refusal);
  EXPECT_EQ(refusalOf("-9223372036854775808 x1 >= 0 ;"), "1:1: " + refusal);
  EXPECT_EQ(refusalOf("+1 x1 >= -9223372036854775808 ;"), "1:1: " + refusal);
  EXPECT_EQ(refusalOf("min: +5000000000000000000 x1 +5000000000000000000 x2 ;"), "1:1: " + refusal);
}

struct Malformed {
  const char* text;
  const char* refusal;
};

class MalformedOpb : public ::testing::TestWithParam<Malformed> {};

TEST_P(MalformedOpb, IsRefusedWithPlaceFoundAndExpected) {
  EXPECT_EQ(refusalOf(GetParam().text), GetParam().refusal);
}

INSTANTIATE_TEST_SUITE_P(
    OpbReader, MalformedOpb,
    ::testing::Values(
        Malformed{"",
                  "1:1: found the end of the file, expected \"min:\", \"max:\" or a constraint"},
        Malformed{"* only a comment\n",
                  "2:1: found the end of the file, expected \"min:\", \"max:\" or a constraint"},
        Malformed{"x1 >= 1 ;",
                  "1:1: found \"x1\", expected the coefficient that begins a constraint"},
        Malformed{"hello",
                  "1:1: found \"hello\", expected the coefficient that begins a constraint"},
        Malformed{"soft: 3 ;",
                  "1:1: found \"soft:\", expected the coefficient that begins a constraint"},
        Malformed{">= 1 ;", "1:1: found \">=\", expected the coefficient that begins a constraint"},
        Malformed{"+1 x1 >= 1 ;\nmin: +1 x1 ;",
                  "2:1: found \"min:\", expected the coefficient that begins a constraint"},
        Malformed{"min: +1 x1 ;\nmax: +1 x1 ;",
                  "2:1: found \"max:\", expected the coefficient that begins a constraint"},
        Malformed{"min: x1 ;", "1:6: found \"x1\", expected a coefficient or \";\""},
        Malformed{"min: +1 x1",
                  "1:11: found the end of the file, expected a literal, a coefficient "
                  "or \";\""},
        Malformed{"min: +1 x1 >= 3 ;",
                  "1:12: found \">=\", expected a literal, a coefficient or \";\""},
        Malformed{"min +1 x1 ;",
                  "1:1: found \"min\", expected the coefficient that begins a constraint"},
        Malformed{"+1 +2 x1 >= 1 ;", "1:4: found \"+2\", expected a literal such as x1 or ~x1"},
        Malformed{"+1 >= 1 ;", "1:4: found \">=\", expected a literal such as x1 or ~x1"},
        Malformed{"+1 ~ 3 >= 1 ;", "1:6: found \"3\", expected the name of a variable after \"~\""},
        Malformed{"+1 ~~x1 >= 1 ;",
                  "1:5: found \"~\", expected the name of a variable after \"~\""},
        Malformed{"+ 1 x1 >= 1 ;",
                  "1:1: found \"+\", expected the coefficient that begins a constraint"},
        Malformed{"3x1 >= 1 ;",
                  "1:1: found \"3x1\", expected the coefficient that begins a constraint"},
        Malformed{"1.5 x1 >= 1 ;",
                  "1:1: found \"1.5\", expected the coefficient that begins a constraint"},
        Malformed{"+1 x1 > 1 ;",
                  "1:7: found \">\", expected a literal, a coefficient, \">=\", "
                  "\"=\" or \"<=\""},
        Malformed{"+1 x1 ;",
                  "1:7: found \";\", expected a literal, a coefficient, \">=\", \"=\" or "
                  "\"<=\""},
        Malformed{"+1 x1 +1 x2",
                  "1:12: found the end of the file, expected a literal, a "
                  "coefficient, \">=\", \"=\" or \"<=\""},
        Malformed{"+1 x1 >= ;", "1:10: found \";\", expected the integer bound of the constraint"},
        Malformed{"+1 x1 >= x2 ;",
                  "1:10: found \"x2\", expected the integer bound of the constraint"},
        Malformed{"+1 x1 >= 1.0 ;",
                  "1:10: found \"1.0\", expected the integer bound of the constraint"},
        Malformed{"+1 x1 >= 1\n+1 x2 >= 1 ;", "2:1: found \"+1\", expected \";\""},
        Malformed{"+1 x1 >= 1", "1:11: found the end of the file, expected \";\""},
        Malformed{"+1 x1 >= 1 ;;",
                  "1:13: found \";\", expected the coefficient that begins a constraint"},
        Malformed{"+1 x1 $ >= 1 ;",
                  "1:7: found \"$\", expected a literal, a coefficient, \">=\", "
                  "\"=\" or \"<=\""},
        Malformed{"\x01",
                  "1:1: found the byte 0x01, expected the coefficient that begins a "
                  "constraint"},
        Malformed{"\xc3\xa9",
                  "1:1: found the byte 0xc3, expected the coefficient that begins a "
                  "constraint"}));

TEST(OpbReader, WhateverIsWrittenIsReadOrRefusedWithItsPlace) {
  const std::string valid =
      "* c\nmin: +3 x1 -2 ~x2 x3 ;\n+1 x1 >= 1 ;\n-9 ~x2 = 0 ;\n+1 x3 <= 1 ;\n";
  const std::string pieces = "+-0123456789 x~;=<>*:min\n\t\x01\xff.";
  for (unsigned seed = 0; seed < 2000; ++seed) {
    std::mt19937 rng(seed);
    std::string text = valid;
    for (unsigned i = 0; i < 1 + seed % 5; ++i) {
      const std::size_t position = rng() % text.size();
      if (rng() % 3 == 0) {
        text.erase(position, 1 + rng() % 4);
      } else {
        text.insert(position, 1, pieces[rng() % pieces.size()]);
      }
    }
    const std::string refusal = refusalOf(text);
    if (refusal == "accepted") continue;
    ASSERT_THAT(refusal, ::testing::MatchesRegex("[0-9]+:[0-9]+: found .+, expected .+"))
        << "seed " << seed;
  }
}

TEST(OpbReader, AFileThatIsNotThereIsNamed) {
  try {
    OpbReader::read("/no/such/file.opb");
    FAIL();
  } catch (const InputError& error) {
    EXPECT_STREQ(error.what(), "/no/such/file.opb: cannot be opened: No such file or directory");
  }
}

TEST(OpbReader, AFolderIsNoModel) {
  try {
    OpbReader::read("/tmp");
    FAIL();
  } catch (const InputError& error) {
    EXPECT_STREQ(error.what(), "/tmp: cannot be read: Is a directory");
  }
}

TEST(OpbReader, AGzipStreamThatBreaksOffIsRefused) {
  std::string text;
  for (int i = 1; i <= 5000; ++i) text += "+" + std::to_string(i * 7919) + " x1 >= 1 ;\n";
  std::string packed = test::gzipped(text);
  packed.resize(packed.size() / 2);
  EXPECT_EQ(refusalOf(packed), " cannot be read: the gzip stream breaks off");
}

TEST(OpbReader, ADamagedGzipStreamIsRefused) {
  std::string packed = test::gzipped("+1 x1 >= 1 ;\n");
  packed[packed.size() - 6] = static_cast<char>(packed[packed.size() - 6] ^ 0x55);
  EXPECT_EQ(refusalOf(packed), " cannot be read: incorrect data check");
}

}  // namespace
}  // namespace ombrix::cli
