#include "cli/solutionwriter.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "cli/inputerror.h"

namespace ombrix::cli {
namespace {

TEST(ValueLines, ShowEveryVariableWithItsSign) {
  EXPECT_EQ(valueLines({"x1", "x2", "x10"}, {true, false, true}), "v x1 -x2 x10\n");
}

TEST(ValueLines, AModelWithoutVariablesHasAnEmptyLine) {
  EXPECT_EQ(valueLines({}, {}), "v\n");
}

TEST(ValueLines, LongSolutionsAreBroken) {
  std::vector<std::string> names;
  for (int i = 1; i <= 500; ++i) names.push_back("x" + std::to_string(i));
  const std::string text = valueLines(names, std::vector<bool>(500, false));
  std::string joined;
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t end = text.find('\n', begin);
    const std::string line = text.substr(begin, end - begin);
    EXPECT_TRUE(line.starts_with("v -x"));
    EXPECT_LE(line.size(), 110U);
    joined += line.substr(1);
    begin = end + 1;
  }
  std::string expected;
  for (const std::string& name : names) expected += " -" + name;
  EXPECT_EQ(joined, expected);
}

class SolutionFileTest : public ::testing::Test {
protected:
  void SetUp() override {
    folder = std::filesystem::temp_directory_path() /
             ("ombrix-" + std::to_string(getpid()) + "-solution");
    std::filesystem::create_directory(folder);
  }
  void TearDown() override { std::filesystem::remove_all(folder); }

  std::string path() const { return (folder / "best.txt").string(); }
  std::string contents() const {
    std::ifstream input(path());
    return {std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
  }
  std::ptrdiff_t nbFiles() const {
    return std::distance(std::filesystem::directory_iterator(folder), {});
  }

  std::filesystem::path folder;
};

TEST_F(SolutionFileTest, AppearsWholeAtTheCommitOnly) {
  std::ofstream(path()) << "the one before";
  {
    SolutionFile file(path());
    EXPECT_EQ(contents(), "the one before");
    file.commit("v x1\n");
    EXPECT_EQ(contents(), "v x1\n");
  }
  EXPECT_EQ(contents(), "v x1\n");
  EXPECT_EQ(nbFiles(), 1);
}

TEST_F(SolutionFileTest, LeavesNoTraceWithoutACommit) {
  { const SolutionFile file(path()); }
  EXPECT_EQ(nbFiles(), 0);
}

TEST_F(SolutionFileTest, APlaceThatCannotBeWrittenIsNoticedAtOnce) {
  try {
    const SolutionFile file("/no/such/folder/best.txt");
    FAIL();
  } catch (const InputError& error) {
    EXPECT_STREQ(error.what(),
                 "/no/such/folder/best.txt: cannot be written: No such file or directory");
  }
}

TEST_F(SolutionFileTest, AFolderIsNoticedAtOnce) {
  try {
    const SolutionFile file(folder.string());
    FAIL();
  } catch (const InputError& error) {
    EXPECT_EQ(error.what(), folder.string() + ": cannot be written: Is a directory");
  }
  EXPECT_TRUE(std::filesystem::is_directory(folder));
}

TEST_F(SolutionFileTest, ALinkStaysAndItsFileIsReplaced) {
  const std::filesystem::path target = folder / "target.txt";
  std::ofstream(target) << "the one before";
  std::filesystem::create_symlink(target, path());
  SolutionFile(path()).commit("v x1\n");
  EXPECT_TRUE(std::filesystem::is_symlink(path()));
  EXPECT_EQ(contents(), "v x1\n");
  EXPECT_EQ(nbFiles(), 2);
}

TEST_F(SolutionFileTest, ADeviceIsWrittenToAndNeverReplaced) {
  std::filesystem::create_symlink("/dev/null", path());
  SolutionFile(path()).commit("v x1\n");
  EXPECT_TRUE(std::filesystem::is_character_file(path()));
  EXPECT_EQ(nbFiles(), 1);
}

TEST_F(SolutionFileTest, APipeIsWrittenToAndNeverReplaced) {
  ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
  const int reader = open(path().c_str(), O_RDONLY | O_NONBLOCK);
  SolutionFile(path()).commit("v x1\n");
  char text[16];
  EXPECT_EQ(read(reader, text, sizeof text), 5);
  EXPECT_EQ(std::string(text, 5), "v x1\n");
  close(reader);
  EXPECT_TRUE(std::filesystem::is_fifo(path()));
}

}  // namespace
}  // namespace ombrix::cli
