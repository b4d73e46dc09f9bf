#include "builder/modelreader.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "api/ombrix.h"
#include "builder/modelrecord.h"
#include "builder/parallelizer.h"
#include "oxm/binarywriter.h"
#include "support/failures.h"
#include "support/statemessages.h"
#include "support/tokenfiles.h"

namespace ombrix {
namespace {

using test::expectFailure;
using test::kModeling;
using test::TemporaryFile;

/// Reads files into a fresh solver.
class ModelReaderTest : public ::testing::Test {
protected:
  void readBytes(const std::string& bytes) {
    const TemporaryFile file(bytes, ".dat");
    ModelReader(solver, file.path()).read();
  }
  void readText(const std::string& body) { readBytes("<OXM01>\r\n" + body); }
  /// A file with these sections behind one decision x, a constant 2 and the sum of both.
  void readSections(const std::string& sections) { readText(kModel + sections + "}"); }
  void expectRefused(int code, const std::string& function, const std::string& message,
                     const std::string& body) {
    SCOPED_TRACE(body);
    Ombrix fresh;
    const TemporaryFile file("<OXM01>\r\n" + body, ".oxm");
    expectFailure(code, function, message, [&] { ModelReader(fresh, file.path()).read(); });
  }
  void expectSectionRefused(int code, const std::string& function, const std::string& message,
                            const std::string& sections) {
    expectRefused(code, function, message, kModel + sections + "}");
  }

  const std::string kModel =
      "{\"expressions\"={{\"type\"=\"bool\",\"name\"=\"x\"},{\"type\"=\"const\",\"value\"=2},"
      "{\"type\"=\"sum\"}},\"operands\"={{},{},{0,1}},\"objectives\"={{\"idx\"=2}}";
  Ombrix solver;
  OXModel& model = *solver.getModel();
};

TEST_F(ModelReaderTest, OtherFilesAreRefused) {
  for (const std::string bytes : {"", "<OXM01", "<OXM02>{}", "{}", "\x1f\x8b"}) {
    expectFailure(1, "ModelReader::ModelReader", "The given file format is not recognized",
                  [&] { readBytes(bytes); });
  }
}

TEST_F(ModelReaderTest, AMissingFileIsNamed) {
  expectFailure(1, "GzipIstream::GzipIstream", "Cannot open file missing.oxm",
                [&] { ModelReader(solver, "missing.oxm"); });
}

TEST_F(ModelReaderTest, AFileWithoutInfoIsRead) {
  readSections("");
  EXPECT_EQ(model.getNbExpressions(), 3);
  EXPECT_EQ(model.getExpression("x")->getOperator(), OXOperator::Bool);
  EXPECT_EQ(model.getNbDecisions(), 1);
  EXPECT_EQ(model.getExpression(1)->getIntValue(), 2);
  EXPECT_EQ(model.getExpression(2)->getOperand(1)->getIndex(), 1);
  EXPECT_EQ(model.getNbOperands(), 2);
  EXPECT_EQ(model.getObjectiveDirection(0), OXObjectiveDirection::Minimize);
  EXPECT_FALSE(model.isClosed());
}

TEST_F(ModelReaderTest, AFileMadeByHandMayBeLaidOutFreely) {
  // The example of docs/files.md.
  readBytes(
      "<OXM01>\n"
      "{\"expressions\"={\n"
      "  {\"type\"=\"bool\",\"name\"=\"x\"},\n"
      "  {\"type\"=\"const\",\"value\"=2},\n"
      "  {\"type\"=\"prod\"}},\n"
      "\"operands\"={{},{},{1,0}},\n"
      "\"constraints\"={{\"idx\"=0}},\n"
      "\"objectives\"={{\"idx\"=2,\"dir\"=\"maximize\"}}}\n");
  model.close();
  model.getExpression("x")->setValue(1);
  EXPECT_EQ(model.getObjective(0)->getIntValue(), 2);
}

TEST_F(ModelReaderTest, AGzipThatExpandsFarIsStoppedByItsTokens) {
  const std::string blanks(20000000, ' ');
  const std::string bytes = test::gzipped("<OXM01>" + blanks + "]");
  EXPECT_LT(bytes.size(), 100000U);
  expectFailure(1, "TextReader::next", "At line 1: unexpected character ']'",
                [&] { readBytes(bytes); });
}

TEST_F(ModelReaderTest, InfoIsSkippedWhateverItHolds) {
  readText("{\"info\"=nil,\"expressions\"={}}");
  EXPECT_EQ(model.getNbExpressions(), 0);
}

TEST_F(ModelReaderTest, TheExpressionsComeFirst) {
  expectRefused(1, "TextReader::nextProperty",
                "At line 2: unexpected property 'operands', expecting 'expressions'",
                "{\"operands\"={}}");
  expectRefused(1, "TextReader::nextProperty",
                "At line 2: unexpected property 'info', expecting 'expressions'",
                "{\"info\"={},\"info\"={}}");
  expectRefused(1, "TextReader::checkType", "At line 2: unexpected token, expecting 'property'",
                "{}");
  expectRefused(1, "TextReader::checkType", "At line 2: unexpected token, expecting '{'", "1}");
}

TEST_F(ModelReaderTest, ABinaryFileNamesTheSectionThatItMisses) {
  const std::string bytes = test::written<BinaryWriter>([](BinaryWriter& w) {
    w.pushMap();
    w.pushProperty("operands", 1);
  });
  expectFailure(1, "BinaryReader::nextProperty",
                "Unexpected property. Expected property 'expressions'. Property found 'operands'",
                [&] { readBytes(bytes); });
}

TEST_F(ModelReaderTest, UnknownSectionsAndPropertiesAreSkipped) {
  readText(
      "{\"info\"={1,{2}},\"expressions\"={{\"future\"={{}},\"type\"=\"bool\",\"more\"=nil}},"
      "\"unknown\"={\"a\"={1,{}}},\"constraints\"={{\"why\"=\"so\",\"idx\"=0}},"
      "\"objectives\"={{\"idx\"=0,\"weight\"=0.5}},\"other\"=5,"
      "\"phases\"={{\"timeLimit\"=5,\"name\"=\"warm\"}},"
      "\"parameters\"={\"colour\"=nope,\"seed\"=3},"
      "\"solution\"={\"decisions\"={1},\"quality\"={}}}");
  EXPECT_EQ(model.getNbConstraints(), 1);
  EXPECT_EQ(solver.getPhase(0)->getTimeLimit(), 5);
  EXPECT_EQ(solver.getParam()->getSeed(), 3);
  EXPECT_EQ(model.getDecision(0)->getIntValue(), 1);
}

TEST_F(ModelReaderTest, WhatStandsBehindTheLastBraceIsIgnored) {
  readSections("}?? \x01 {{");
  EXPECT_EQ(model.getNbExpressions(), 3);
}

TEST_F(ModelReaderTest, TheLastBraceMustBeThere) {
  expectRefused(1, "TextReader::checkType", "At line 2: unexpected token, expecting '}'", kModel);
}

TEST_F(ModelReaderTest, AnExpressionNeedsItsType) {
  expectRefused(1, "ModelReader::readExpressions",
                "Property 'type' is required to define an expression",
                "{\"expressions\"={{\"name\"=\"x\",\"value\"=1}}}");
  expectRefused(6, "OperatorTools::stringToOperator", "Unknown operator : plus",
                "{\"expressions\"={{\"type\"=\"plus\"}}}");
}

TEST_F(ModelReaderTest, AConstantNeedsItsOwnValue) {
  expectRefused(1, "ModelReader::readExpressions",
                "Property 'value' is required to define a constant",
                "{\"expressions\"={{\"type\"=\"const\",\"value\"=3},{\"type\"=\"const\"}}}");
  expectRefused(1, "TextReader::checkType", "At line 2: unexpected token, expecting 'long long'",
                "{\"expressions\"={{\"type\"=\"const\",\"value\"=\"3\"}}}");
  expectRefused(2, "OXModel::createConstant", "Cannot use NaN (Not a Number) as a double constant.",
                "{\"expressions\"={{\"type\"=\"const\",\"value\"=nan}}}");
  expectRefused(2, "OXModel::createConstant", "Cannot use infinity as a double constant.",
                "{\"expressions\"={{\"type\"=\"const\",\"value\"=inf}}}");
}

TEST_F(ModelReaderTest, AValueOfAnotherOperatorIsForgotten) {
  readText("{\"expressions\"={{\"type\"=\"sum\",\"value\"=7},{\"value\"=0.5,\"type\"=\"const\"}}}");
  EXPECT_EQ(model.getExpression(0)->getOperator(), OXOperator::Sum);
  EXPECT_EQ(model.getExpression(0)->getNbOperands(), 0);
  EXPECT_EQ(model.getExpression(1)->getDoubleValue(), 0.5);
}

TEST_F(ModelReaderTest, EqualConstantsAreOneExpressionAndIndicesStayThoseOfTheFile) {
  readText(
      "{\"expressions\"={{\"type\"=\"const\",\"value\"=2},{\"type\"=\"const\",\"value\"=2},"
      "{\"type\"=\"sum\"}},\"operands\"={{},{},{0,1}},\"objectives\"={{\"idx\"=2}}}");
  EXPECT_EQ(model.getNbExpressions(), 2);
  EXPECT_EQ(model.getObjective(0)->getIndex(), 1);
  EXPECT_EQ(model.getExpression(1)->getOperand(0), model.getExpression(0));
  EXPECT_EQ(model.getExpression(1)->getOperand(1), model.getExpression(0));
}

TEST_F(ModelReaderTest, NamesObeyTheModel) {
  expectRefused(0, "OXExpression::setName", "An operator with name \"a\" already exists.",
                "{\"expressions\"={{\"type\"=\"bool\",\"name\"=\"a\"},"
                "{\"type\"=\"bool\",\"name\"=\"a\"}}}");
  readText("{\"expressions\"={{\"type\"=\"bool\",\"name\"=\"\"}}}");
  EXPECT_FALSE(model.getExpression(0)->isNamed());
}

TEST_F(ModelReaderTest, WildIndicesAreRefused) {
  const auto message = [](const std::string& index, const std::string& last) {
    return "Expression with index " + index + " does not exist.\nOnly indices from 0 to " + last +
           " are currently allowed.";
  };
  for (const std::string index : {"-1", "3", "2147483647", "-2147483648"}) {
    expectSectionRefused(1, "ModelReader::read", message(index, "2"),
                         ",\"operands\"={{" + index + "}}");
    for (const std::string section : {"constraints", "objectives"}) {
      expectSectionRefused(1, "ModelReader::read", message(index, "2"),
                           ",\"" + section + "\"={{\"idx\"=" + index + "}}");
    }
  }
  expectSectionRefused(1, "ModelReader::read", message("3", "2"), ",\"operands\"={{},{},{},{}}");
  expectRefused(1, "ModelReader::read", message("0", "-1"),
                "{\"expressions\"={},\"operands\"={{}}}");
  expectSectionRefused(1, "TextReader::checkType", "At line 2: unexpected token, expecting '}'",
                       ",\"operands\"={{2147483648}}");
  expectSectionRefused(1, "TextReader::checkType", "At line 2: unexpected token, expecting 'int'",
                       ",\"constraints\"={{\"idx\"=0.5}}");
}

TEST_F(ModelReaderTest, AGoalWithoutIndexIsIgnored) {
  readSections(",\"constraints\"={{}},\"objectives\"={{\"dir\"=\"maximize\"}}");
  EXPECT_EQ(model.getNbConstraints(), 0);
  EXPECT_EQ(model.getNbObjectives(), 1);
}

TEST_F(ModelReaderTest, OnlyTheExactWordMaximizes) {
  readSections(
      ",\"objectives\"={{\"idx\"=2,\"dir\"=\"maximize\"},{\"idx\"=2,\"dir\"=\"Maximize\"},"
      "{\"dir\"=\"maximize\",\"idx\"=2},{\"idx\"=2,\"dir\"=\"\"}}");
  const int expected[] = {0, 1, 0, 1, 0};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(static_cast<int>(model.getObjectiveDirection(i)), expected[i]);
  }
}

TEST_F(ModelReaderTest, GoalsAreChecked) {
  expectSectionRefused(
      2, "OXModel::addConstraint",
      "Only boolean expressions can be constrained (0, 1, bool, and, or, xor, not, eq, neq, geq, "
      "leq, gt, lt, if).",
      ",\"constraints\"={{\"idx\"=2}}");
}

TEST_F(ModelReaderTest, SectionsMayComeMoreThanOnce) {
  readSections(",\"operands\"={{},{},{1}},\"constraints\"={{\"idx\"=0}},\"constraints\"={}");
  EXPECT_EQ(model.getExpression(2)->getNbOperands(), 3);
  EXPECT_EQ(model.getNbConstraints(), 1);
}

TEST_F(ModelReaderTest, TheFirstSectionThatNeedsItClosesTheModel) {
  for (const std::string section : {"phases", "parameters", "solution"}) {
    Ombrix fresh;
    const TemporaryFile file("<OXM01>" + kModel + ",\"" + section + "\"={}}", ".oxm");
    ModelReader(fresh, file.path()).read();
    EXPECT_TRUE(fresh.getModel()->isClosed());
  }
}

TEST_F(ModelReaderTest, TheSolutionMayStandBeforeThePhases) {
  readSections(
      ",\"solution\"={\"decisions\"={1},\"status\"=\"optimal\"},\"parameters\"={},"
      "\"phases\"={{},{}}");
  EXPECT_EQ(model.getDecision(0)->getIntValue(), 1);
  EXPECT_EQ(solver.getNbPhases(), 2);
}

TEST_F(ModelReaderTest, AModelSectionBehindTheClosingIsRefused) {
  expectSectionRefused(0, "OXModel::addConstraint", kModeling,
                       ",\"phases\"={},\"constraints\"={{\"idx\"=0}}");
}

TEST_F(ModelReaderTest, WhatIsReadIsCheckedByTheClosing) {
  expectRefused(2, "OXModel::close", "At least one objective is required in the model.",
                "{\"expressions\"={{\"type\"=\"bool\"}},\"phases\"={}}");
  expectRefused(2, "OXModel::close",
                "A cycle of length 1 was detected in the model : \n"
                "  - Expression 0 (type = sum)\n",
                "{\"expressions\"={{\"type\"=\"sum\"}},\"operands\"={{0}},"
                "\"objectives\"={{\"idx\"=0}},\"phases\"={}}");
  expectRefused(2, "OXModel::close",
                "Number of operands (3) is too large: at most 0 operands are expected for "
                "Expression 1 (type = const).",
                "{\"expressions\"={{\"type\"=\"bool\"},{\"type\"=\"const\",\"value\"=5}},"
                "\"operands\"={{},{0,0,0}},\"objectives\"={{\"idx\"=0}},\"phases\"={}}");
}

TEST_F(ModelReaderTest, ParametersGoThroughTheirSetters) {
  readSections(
      ",\"parameters\"={\"timeBetweenDisplays\"=3,\"seed\"=9,\"nbThreads\"=5,\"verbosity\"=2,"
      "\"annealingLevel\"=7,\"objectiveBounds\"={-4},"
      "\"advancedParams\"={\"dumpEnabled\"=1,\"a\"=-2}}");
  const OXParam& param = *solver.getParam();
  EXPECT_EQ(param.getTimeBetweenDisplays(), 3);
  EXPECT_EQ(param.getSeed(), 9);
  EXPECT_EQ(param.getNbThreads(), 5);
  EXPECT_EQ(param.getVerbosity(), 2);
  EXPECT_EQ(param.getAnnealingLevel(), 7);
  EXPECT_EQ(param.getIntObjectiveBound(0), -4);
  EXPECT_EQ(param.getAdvancedParam("dumpEnabled"), 1);
  EXPECT_EQ(param.getAdvancedParam("a"), -2);
}

TEST_F(ModelReaderTest, ValuesThatAreRefusedFail) {
  expectSectionRefused(0, "OXParam::setNbThreads",
                       "Number of threads must be an integer between 1 and 1024.",
                       ",\"parameters\"={\"nbThreads\"=5000}");
  expectSectionRefused(2, "OXParam::setDoubleObjectiveBound",
                       "Cannot use this method. The given expression must be double.",
                       ",\"parameters\"={\"objectiveBounds\"={0.5}}");
  expectSectionRefused(0, "OXParam::setIntObjectiveBound",
                       "Objective with index 1 does not exist.\n"
                       "Only indices from 0 to 0 are currently allowed.",
                       ",\"parameters\"={\"objectiveBounds\"={0,0}}");
  expectSectionRefused(1, "TextReader::checkType", "At line 2: unexpected token, expecting 'int'",
                       ",\"parameters\"={\"advancedParams\"={\"a\"=0.5}}");
  expectSectionRefused(0, "OXPhase::setTimeLimit", "Argument timeLimit must be strictly positive.",
                       ",\"phases\"={{\"timeLimit\"=0}}");
}

TEST_F(ModelReaderTest, DecisionsAreChecked) {
  expectSectionRefused(0, "OXModel::getDecision",
                       "Decision with index 1 does not exist.\n"
                       "Only indices from 0 to 0 are currently allowed.",
                       ",\"solution\"={\"decisions\"={1,0}}");
  expectSectionRefused(0, "OXExpression::setIntValue", "The only allowed values are 0 or 1",
                       ",\"solution\"={\"decisions\"={2}}");
  expectSectionRefused(2, "OXExpression::setDoubleValue",
                       "Cannot use this method. The given expression must be double.",
                       ",\"solution\"={\"decisions\"={0.5}}");
}

TEST_F(ModelReaderTest, AFailureLeavesWhatWasRead) {
  EXPECT_THROW(readSections(",\"phases\"={{\"timeLimit\"=5},{\"timeLimit\"=-5}}}"), OXException);
  EXPECT_EQ(model.getNbExpressions(), 3);
  EXPECT_TRUE(model.isClosed());
  EXPECT_EQ(solver.getNbPhases(), 2);
  EXPECT_EQ(solver.getPhase(0)->getTimeLimit(), 5);
}

TEST_F(ModelReaderTest, AnUnknownSectionOfAMillionLevelsIsSkipped) {
  const int depth = 1000000;
  readSections(",\"deep\"=" + std::string(depth, '{') + std::string(depth, '}') +
               ",\"constraints\"={{\"idx\"=0}}");
  EXPECT_EQ(model.getNbConstraints(), 1);
}

TEST_F(ModelReaderTest, AChainOfManyExpressionsIsNoStackOverflow) {
  const int length = 200000;
  std::string expressions = "{\"type\"=\"bool\"}";
  std::string operands = "{}";
  for (int i = 0; i < length; ++i) {
    expressions += ",{\"type\"=\"not\"}";
    operands += ",{" + std::to_string(i) + "}";
  }
  readText("{\"expressions\"={" + expressions + "},\"operands\"={" + operands +
           "},\"objectives\"={{\"idx\"=" + std::to_string(length) + "}},\"phases\"={}}");
  EXPECT_TRUE(model.isClosed());
}

}  // namespace
}  // namespace ombrix
