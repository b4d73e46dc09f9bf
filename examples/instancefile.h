#ifndef OMBRIX_EXAMPLES_INSTANCEFILE_H
#define OMBRIX_EXAMPLES_INSTANCEFILE_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace examples {

/// The whole text of a file, plain or gzip.
std::string readText(const std::string& fileName);

/// The words of an instance file, plain or gzip, one after the other. A word of the wrong kind is a
/// std::runtime_error that names file, line, what was found and what was expected.
class InstanceFile {
public:
  explicit InstanceFile(const std::string& name);

  bool atEnd();
  std::string nextWord(const std::string& expected = "a word");
  long long nextInt(const std::string& expected = "an integer");
  /// An integer between two limits, both allowed.
  long long nextInt(long long low, long long high, const std::string& expected);
  /// The number, from 1, of one of so many things, as its position from 0.
  std::size_t nextIndex(long long count, const std::string& expected);
  double nextDouble(const std::string& expected = "a number");
  /// Passes over a line that begins with the mark; false, and nothing read, if the next word does
  /// not.
  bool skipComment(char mark);
  /// Passes over the rest of the line.
  void skipLine();

private:
  void skipSpaces();
  [[noreturn]] void fail(const std::string& found, const std::string& expected) const;

  std::string fileName;
  std::string content;
  std::size_t position = 0;
  std::size_t line = 1;
};

/// Decimal numbers made integers by one power of ten for all of them: the engine computes exactly
/// with integers, and the answer divided by the scale is the answer in the units of the file.
class ScaledNumbers {
public:
  /// Takes the numbers as they were read; at most 6 decimals are kept.
  explicit ScaledNumbers(const std::vector<double>& numbers);

  long long operator[](std::size_t i) const { return values[i]; }
  double unscaled(long long value) const {
    return static_cast<double>(value) / static_cast<double>(scale);
  }

private:
  std::vector<long long> values;
  long long scale = 1;
};

}  // namespace examples

#endif
