#include "instancefile.h"

#include <zlib.h>

#include <charconv>
#include <cmath>
#include <memory>
#include <stdexcept>

namespace examples {

namespace {

bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace

std::string readText(const std::string& fileName) {
  const std::unique_ptr<gzFile_s, int (*)(gzFile)> file(gzopen(fileName.c_str(), "rb"), gzclose);
  if (!file) throw std::runtime_error("Cannot open file " + fileName);
  std::string content;
  std::string block(std::size_t{1} << 16, '\0');
  for (;;) {
    const int n = gzread(file.get(), block.data(), static_cast<unsigned>(block.size()));
    if (n < 0) throw std::runtime_error("Cannot read file " + fileName);
    if (n == 0) return content;
    content.append(block, 0, static_cast<std::size_t>(n));
  }
}

InstanceFile::InstanceFile(const std::string& name) : fileName(name), content(readText(name)) {}

bool InstanceFile::atEnd() {
  skipSpaces();
  return position == content.size();
}

std::string InstanceFile::nextWord(const std::string& expected) {
  if (atEnd()) fail("the end of the file", expected);
  const std::size_t start = position;
  while (position < content.size() && !isSpace(content[position])) ++position;
  return content.substr(start, position - start);
}

long long InstanceFile::nextInt(const std::string& expected) {
  const std::string word = nextWord(expected);
  long long value = 0;
  const auto end = std::from_chars(word.data(), word.data() + word.size(), value);
  if (end.ec != std::errc() || end.ptr != word.data() + word.size()) {
    fail("'" + word + "'", expected);
  }
  return value;
}

long long InstanceFile::nextInt(long long low, long long high, const std::string& expected) {
  const long long value = nextInt(expected);
  if (value < low || value > high) {
    fail("'" + std::to_string(value) + "'",
         expected + " between " + std::to_string(low) + " and " + std::to_string(high));
  }
  return value;
}

std::size_t InstanceFile::nextIndex(long long count, const std::string& expected) {
  return static_cast<std::size_t>(nextInt(1, count, expected) - 1);
}

double InstanceFile::nextDouble(const std::string& expected) {
  const std::string word = nextWord(expected);
  double value = 0.0;
  const auto end = std::from_chars(word.data(), word.data() + word.size(), value);
  if (end.ec != std::errc() || end.ptr != word.data() + word.size() || !std::isfinite(value)) {
    fail("'" + word + "'", expected);
  }
  return value;
}

bool InstanceFile::skipComment(char mark) {
  if (atEnd() || content[position] != mark) return false;
  skipLine();
  return true;
}

void InstanceFile::skipLine() {
  while (position < content.size() && content[position] != '\n') ++position;
}

void InstanceFile::skipSpaces() {
  for (; position < content.size() && isSpace(content[position]); ++position) {
    if (content[position] == '\n') ++line;
  }
}

void InstanceFile::fail(const std::string& found, const std::string& expected) const {
  throw std::runtime_error(fileName + ":" + std::to_string(line) + ": found " + found +
                           ", expected " + expected);
}

ScaledNumbers::ScaledNumbers(const std::vector<double>& numbers) {
  constexpr long long kLargestScale = 1000000;
  const auto isWhole = [this](double x) {
    const double scaled = x * static_cast<double>(scale);
    return std::fabs(scaled - std::round(scaled)) < 1e-6;
  };
  for (const double x : numbers) {
    while (!isWhole(x) && scale < kLargestScale) scale *= 10;
  }
  for (const double x : numbers) values.push_back(std::llround(x * static_cast<double>(scale)));
}

}  // namespace examples
