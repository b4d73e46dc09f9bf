#include "cli/commandline.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/inputerror.h"

namespace ombrix::cli {
namespace {

CommandLine parse(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "ombrix");
  return parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

std::string refusalOf(const std::vector<const char*>& arguments) {
  try {
    parse(arguments);
  } catch (const InputError& error) {
    return error.what();
  }
  return "accepted";
}

TEST(CommandLine, ASolveWithoutOptionsHasOneUnlimitedPhase) {
  const CommandLine line = parse({"solve", "m.opb"});
  EXPECT_EQ(line.command, CommandLine::Command::Solve);
  EXPECT_EQ(line.model, "m.opb");
  ASSERT_EQ(line.phases.size(), 1U);
  EXPECT_FALSE(line.phases[0].time || line.phases[0].iterations || line.phases[0].objective);
  EXPECT_FALSE(line.threads || line.seed || line.annealingLevel || line.verbosity ||
               line.displayEvery || line.solutionFile);
  EXPECT_TRUE(line.advancedParams.empty());
  EXPECT_EQ(line.output, OutputForm::Plain);
}

TEST(CommandLine, TellsWhetherPhasesWereAskedFor) {
  EXPECT_FALSE(parse({"solve", "m.oxb", "--seed", "1"}).hasPhases());
  EXPECT_TRUE(parse({"solve", "m.oxb", "--time", "1"}).hasPhases());
  EXPECT_TRUE(parse({"solve", "m.oxb", "--iterations", "1"}).hasPhases());
  EXPECT_TRUE(parse({"solve", "m.oxb", "--objective", "0"}).hasPhases());
  EXPECT_TRUE(parse({"solve", "m.oxb", "--phase", "time=1"}).hasPhases());
}

TEST(CommandLine, ReadsFilesToWrite) {
  EXPECT_EQ(parse({"solve", "m.opb", "--save", "m.oxb"}).environmentFile, "m.oxb");
  EXPECT_EQ(parse({"solve", "m.opb", "--stats", "run.json"}).statisticsFile, "run.json");
  const CommandLine line = parse({"convert", "m.opb", "m.oxb"});
  EXPECT_EQ(line.command, CommandLine::Command::Convert);
  EXPECT_EQ(line.model, "m.opb");
  EXPECT_EQ(line.target, "m.oxb");
  EXPECT_NE(refusalOf({"convert", "m.opb"}), "accepted");
}

TEST(CommandLine, ReadsTheLimitOfShow) {
  EXPECT_EQ(parse({"show", "m.oxb"}).command, CommandLine::Command::Show);
  EXPECT_EQ(parse({"show", "m.oxb"}).limit, std::nullopt);
  EXPECT_EQ(parse({"show", "m.oxb", "--limit", "3"}).limit, 3);
  EXPECT_NE(refusalOf({"show", "m.oxb", "--limit", "-1"}), "accepted");
}

TEST(CommandLine, ReadsEveryOption) {
  const CommandLine line = parse({"solve",
                                  "--time",
                                  "10",
                                  "--iterations",
                                  "9000000000",
                                  "--threads",
                                  "4",
                                  "--seed",
                                  "7",
                                  "--annealing-level",
                                  "3",
                                  "--objective",
                                  "0",
                                  "--bound",
                                  "0=-12.5",
                                  "--bound",
                                  "1=9",
                                  "--set",
                                  "a=1",
                                  "--set",
                                  "b=-2",
                                  "m.opb",
                                  "--verbosity",
                                  "2",
                                  "--display-every",
                                  "5",
                                  "--solution",
                                  "s.txt",
                                  "--output",
                                  "pb"});
  EXPECT_EQ(line.model, "m.opb");
  EXPECT_EQ(line.phases[0].time, 10);
  EXPECT_EQ(line.phases[0].iterations, 9000000000);
  EXPECT_EQ(line.phases[0].objective, 0);
  EXPECT_EQ(line.threads, 4);
  EXPECT_EQ(line.seed, 7);
  EXPECT_EQ(line.annealingLevel, 3);
  EXPECT_EQ(line.verbosity, 2);
  EXPECT_EQ(line.displayEvery, 5);
  EXPECT_EQ(line.solutionFile, "s.txt");
  EXPECT_EQ(line.output, OutputForm::Pb);
  const std::vector<std::pair<std::string, int>> expected{{"a", 1}, {"b", -2}};
  EXPECT_EQ(line.advancedParams, expected);
  const std::vector<std::pair<int, std::string>> bounds{{0, "-12.5"}, {1, "9"}};
  EXPECT_EQ(line.objectiveBounds, bounds);
}

TEST(CommandLine, SeveralPhases) {
  const CommandLine line = parse(
      {"solve", "--phase", "time=10,iterations=1000000,objective=0", "--phase", "time=3", "m.opb"});
  EXPECT_EQ(line.model, "m.opb");
  ASSERT_EQ(line.phases.size(), 2U);
  EXPECT_EQ(line.phases[0].time, 10);
  EXPECT_EQ(line.phases[0].iterations, 1000000);
  EXPECT_EQ(line.phases[0].objective, 0);
  EXPECT_EQ(line.phases[1].time, 3);
  EXPECT_FALSE(line.phases[1].iterations || line.phases[1].objective);
}

TEST(CommandLine, MalformedPhasesAreRefused) {
  EXPECT_EQ(refusalOf({"solve", "m", "--phase", "tim=3"}),
            "--phase: found \"tim\", expected time, iterations or objective");
  EXPECT_EQ(refusalOf({"solve", "m", "--phase", "time"}),
            "--phase: found \"time\", expected KEY=VALUE");
  EXPECT_EQ(refusalOf({"solve", "m", "--phase", "time=3,"}),
            "--phase: found \"\", expected KEY=VALUE");
  EXPECT_EQ(refusalOf({"solve", "m", "--phase", "time=0"}),
            "--phase time: found \"0\", expected an integer of at least 1");
  EXPECT_EQ(refusalOf({"solve", "m", "--phase", "iterations=1e6"}),
            "--phase iterations: found \"1e6\", expected an integer of at least 1");
  EXPECT_EQ(refusalOf({"solve", "m", "--phase", "objective=-1"}),
            "--phase objective: found \"-1\", expected an integer of at least 0");
  EXPECT_EQ(refusalOf({"solve", "m", "--phase", "time=99999999999"}),
            "--phase time: found \"99999999999\", expected an integer of at most 2147483647");
  EXPECT_EQ(refusalOf({"solve", "m", "--phase", "time=1,iterations=5,time=2"}),
            "--phase time: given twice");
}

TEST(CommandLine, ABoundIsGivenOnceForEachObjective) {
  EXPECT_EQ(refusalOf({"solve", "m", "--bound", "1=5", "--bound", "0=2", "--bound", "1=6"}),
            "--bound 1: given twice");
}

TEST(CommandLine, TraceIsTheParameterOfTheEngine) {
  EXPECT_TRUE(parse({"solve", "m"}).advancedParams.empty());
  const std::vector<std::pair<std::string, int>> expected{{"traceEnabled", 1}};
  EXPECT_EQ(parse({"solve", "m", "--trace"}).advancedParams, expected);
}

TEST(CommandLine, MalformedAssignmentsAreRefused) {
  EXPECT_EQ(refusalOf({"solve", "m", "--set", "key"}), "--set: found \"key\", expected KEY=VALUE");
  EXPECT_EQ(refusalOf({"solve", "m", "--set", "=1"}), "--set: found \"=1\", expected KEY=VALUE");
  EXPECT_EQ(refusalOf({"solve", "m", "--set", "key=x"}),
            "--set key: found \"x\", expected an integer of 32 bits");
  EXPECT_EQ(refusalOf({"solve", "m", "--set", "key=99999999999"}),
            "--set key: found \"99999999999\", expected an integer of 32 bits");
  EXPECT_EQ(refusalOf({"solve", "m", "--set", "key=-99999999999"}),
            "--set key: found \"-99999999999\", expected an integer of 32 bits");
  EXPECT_EQ(refusalOf({"info", "m", "--set", "key="}),
            "--set key: found \"\", expected an integer of 32 bits");
}

TEST(CommandLine, AnUnknownCommandIsToldByItsName) {
  EXPECT_EQ(refusalOf({"dance", "m"}),
            "found \"dance\", expected solve, info, convert or show (see ombrix --help)");
}

TEST(CommandLine, FailuresNameTheHelpOfTheirCommand) {
  EXPECT_EQ(refusalOf({}), "A subcommand is required (see ombrix --help)");
  EXPECT_EQ(refusalOf({"solve"}), "MODEL is required (see ombrix solve --help)");
  EXPECT_EQ(refusalOf({"info"}), "MODEL is required (see ombrix info --help)");
  EXPECT_EQ(refusalOf({"convert", "m"}), "TARGET is required (see ombrix convert --help)");
  EXPECT_EQ(refusalOf({"show", "m", "--limit", "x"}),
            "--limit: found \"x\", expected an integer from 0 to 9223372036854775807"
            " (see ombrix show --help)");
}

TEST(CommandLine, WhatIsNoIntegerOfTheRangeIsRefused) {
  for (const std::string wrong : {"abc", "1.5", "0", "-3", "0x10", "", "2147483648"}) {
    EXPECT_EQ(refusalOf({"solve", "m", "--time", wrong.c_str()}),
              "--time: found \"" + wrong +
                  "\", expected an integer from 1 to 2147483647 (see ombrix solve --help)");
  }
  EXPECT_EQ(parse({"solve", "m", "--time", "010"}).phases[0].time, 10);
}

TEST(CommandLine, AnOptionWithoutItsValueIsTold) {
  EXPECT_EQ(refusalOf({"solve", "m", "--time"}),
            "--time: SECONDS is missing (see ombrix solve --help)");
  EXPECT_EQ(refusalOf({"solve", "m", "--bound"}),
            "--bound: I=VALUE is missing (see ombrix solve --help)");
  EXPECT_EQ(refusalOf({"info", "m", "--set"}),
            "--set: KEY=VALUE is missing (see ombrix info --help)");
}

TEST(CommandLine, ArgumentsThatNothingTakesAreTold) {
  EXPECT_EQ(refusalOf({"solve", "m", "--tmie", "3"}),
            "unknown option --tmie (see ombrix solve --help)");
  EXPECT_EQ(refusalOf({"info", "m", "--time", "3"}),
            "unknown option --time (see ombrix info --help)");
  EXPECT_EQ(refusalOf({"solve", "m", "n"}),
            "found \"n\", expected nothing more (see ombrix solve --help)");
}

TEST(CommandLine, TheNameOfAFileIsNotEmpty) {
  for (const char* option : {"--solution", "--stats", "--save"}) {
    EXPECT_EQ(refusalOf({"solve", "m", option, ""}),
              option + std::string(": the name of the file is empty (see ombrix solve --help)"));
  }
  EXPECT_EQ(refusalOf({"convert", "m", ""}),
            "TARGET: the name of the file is empty (see ombrix convert --help)");
  EXPECT_EQ(refusalOf({"info", ""}),
            "MODEL: the name of the file is empty (see ombrix info --help)");
}

TEST(CommandLine, IterationsBeyond64BitsAreRefused) {
  EXPECT_EQ(refusalOf({"solve", "m", "--iterations", "99999999999999999999"}),
            "--iterations: found \"99999999999999999999\", expected an integer from 1 to "
            "9223372036854775807 (see ombrix solve --help)");
  EXPECT_EQ(parse({"solve", "m", "--iterations", "9223372036854775807"}).phases[0].iterations,
            9223372036854775807);
}

TEST(CommandLine, AnUnknownFormOfOutputIsRefused) {
  EXPECT_EQ(refusalOf({"solve", "m", "--output", "xml"}),
            "--output: found \"xml\", expected plain or pb");
}

TEST(CommandLine, PhasesExcludeTheOptionsOfASinglePhase) {
  EXPECT_NE(refusalOf({"solve", "m", "--phase", "time=1", "--time", "3"}).find("--phase"),
            std::string::npos);
  EXPECT_NE(refusalOf({"solve", "m", "--phase", "time=1", "--iterations", "3"}), "accepted");
  EXPECT_NE(refusalOf({"solve", "m", "--phase", "time=1", "--objective", "0"}), "accepted");
}

TEST(CommandLine, WhatIsNotUnderstoodIsRefusedInOneLine) {
  const std::vector<std::vector<const char*>> wrong = {{},
                                                       {"unknown"},
                                                       {"solve"},
                                                       {"solve", "m", "n"},
                                                       {"solve", "m", "--time"},
                                                       {"solve", "m", "--time", "0"},
                                                       {"solve", "m", "--time", "-3"},
                                                       {"solve", "m", "--time", "2.5"},
                                                       {"solve", "m", "--time", "3000000000"},
                                                       {"solve", "m", "--iterations", "0"},
                                                       {"solve", "m", "--threads", "0"},
                                                       {"solve", "m", "--threads", "1025"},
                                                       {"solve", "m", "--seed", "-1"},
                                                       {"solve", "m", "--annealing-level", "10"},
                                                       {"solve", "m", "--verbosity", "-1"},
                                                       {"solve", "m", "--bound", "9"},
                                                       {"solve", "m", "--bound", "-1=9"},
                                                       {"solve", "m", "--bound", "x=9"},
                                                       {"solve", "m", "--display-every", "0"},
                                                       {"solve", "m", "--unknown"},
                                                       {"info", "m", "--time", "3"},
                                                       {"info", "m", "solve", "m"}};
  for (const auto& arguments : wrong) {
    const std::string refusal = refusalOf(arguments);
    EXPECT_NE(refusal, "accepted");
    EXPECT_EQ(refusal.find('\n'), std::string::npos) << refusal;
  }
}

}  // namespace
}  // namespace ombrix::cli
