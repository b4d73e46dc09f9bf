#include "oxm/tokenreader.h"

#include <cstring>
#include <limits>

#include "common/failure.h"

namespace ombrix {

namespace {

constexpr std::size_t kMagicLength = 7;

template <typename Integer>
bool fits(std::int64_t value) {
  return value >= std::numeric_limits<Integer>::min() &&
         value <= std::numeric_limits<Integer>::max();
}

}  // namespace

void TokenReader::checkMagic(const char* magic, const char* function) {
  char header[kMagicLength + 1] = {};
  stream.read(header, kMagicLength);
  if (std::memcmp(header, magic, sizeof header) != 0) {
    fail(kInputOutput, Where{__FILE__, __LINE__, function},
         "The provided file is not recognized (wrong magic number)");
  }
}

bool TokenReader::isValue() {
  const int token = peek();
  return token != kMapStartToken && token != kMapEndToken && token != kPropertyToken;
}

bool TokenReader::isProperty(const std::string& name) {
  return isProperty() && text == name;
}

bool TokenReader::isChar() {
  return isLongLong() && fits<std::int8_t>(intValue);
}

bool TokenReader::isInt() {
  return isLongLong() && fits<std::int32_t>(intValue);
}

void TokenReader::nextValue() {
  consume(isValue(), "value");
}

void TokenReader::nextMapStart() {
  consume(isMapStart(), mapStartWord());
}

void TokenReader::nextMapEnd() {
  consume(isMapEnd(), mapEndWord());
}

std::string TokenReader::nextProperty(std::string& out) {
  consume(isProperty(), "property");
  out = text;
  return out;
}

void TokenReader::nextProperty(const std::string& expected) {
  consume(isProperty(), "property");
  if (text != expected) failProperty(expected);
}

std::string TokenReader::nextString() {
  consume(isString(), "string");
  return text;
}

double TokenReader::nextDouble() {
  consume(isDouble(), "double");
  return doubleValue;
}

char TokenReader::nextChar() {
  consume(isChar(), "char");
  return static_cast<char>(intValue);
}

int TokenReader::nextInt() {
  consume(isInt(), "int");
  return static_cast<int>(intValue);
}

long TokenReader::nextLong() {
  consume(isLong(), "long");
  return static_cast<long>(intValue);
}

long long TokenReader::nextLongLong() {
  consume(isLongLong(), "long long");
  return intValue;
}

bool TokenReader::nextBool() {
  consume(isBool(), "bool");
  return kind == kTrueToken;
}

void TokenReader::nextFalse() {
  consume(isFalse(), "false");
}

void TokenReader::nextTrue() {
  consume(isTrue(), "true");
}

void TokenReader::nextNil() {
  consume(isNil(), "nil");
}

}  // namespace ombrix
