#include "oxm/textreader.h"

#include <algorithm>

#include "common/failure.h"
#include "solver/kernel/oxvalue.h"

namespace ombrix {

namespace {

constexpr int kEnd = GzipIstream::kEndOfInput;

// The classes of characters are told apart by hand: those of the C library depend on the locale.
bool isDigit(int c) {
  return c >= '0' && c <= '9';
}

bool isLetter(int c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isSpace(int c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isWordCharacter(int c) {
  return isDigit(c) || isLetter(c) || c == '_' || c == '+' || c == '-' || c == '.';
}

bool startsWord(int c) {
  return isDigit(c) || c == '+' || c == '-' || c == '.' || c == 'f' || c == 'i' || c == 'n' ||
         c == 't';
}

bool isIntegerWord(const std::string& word) {
  if (word == "0") return true;
  const char first = word[0];
  if (first != '+' && first != '-' && !(first >= '1' && first <= '9')) return false;
  return std::all_of(word.begin() + 1, word.end(), isDigit);
}

std::string quoted(const std::string& what) {
  return "'" + what + "'";
}

std::string quotedCharacter(int c) {
  return quoted(std::string(1, static_cast<char>(c)));
}

}  // namespace

TextReader::TextReader(const std::string& fileName) : TokenReader(fileName) {
  checkMagic("<OXM01>", "ombrix::TextReader::readHeader");
}

void TextReader::next() {
  kind = kNoToken;
  int c = skipSpaces();
  while (c == ',') c = skipSpaces();
  ended = c == kEnd;
  if (ended) return;
  if (c == '"') {
    readString();
  } else if (c == '{') {
    kind = kMapStartToken;
  } else if (c == '}') {
    kind = kMapEndToken;
  } else if (startsWord(c)) {
    stream.unget();
    readValue();
  } else {
    failAt("ombrix::TextReader::next", "unexpected character " + quotedCharacter(c));
  }
}

void TextReader::readValue() {
  text.clear();
  int c = stream.get();
  for (; isWordCharacter(c); c = stream.get()) text.push_back(static_cast<char>(c));
  if (c != kEnd) stream.unget();
  endWord();
  classifyWord();
}

/// A word must be followed by a comma, which is consumed, or by the end of its map.
void TextReader::endWord() {
  const int c = skipSpaces();
  if (c == ',') return;
  if (c == '}') {
    stream.unget();
    return;
  }
  failAt("ombrix::TextReader::readValue",
         c == kEnd ? "unexpected end-of-file" : "unexpected character " + quotedCharacter(c));
}

void TextReader::classifyWord() {
  if (isIntegerWord(text)) {
    intValue = castToOxInt(text);
    kind = kIntegerToken;
  } else if (isDoubleLiteral(text.c_str())) {
    doubleValue = castToOxDouble(text);
    kind = kDoubleToken;
  } else if (text == "true") {
    kind = kTrueToken;
  } else if (text == "false") {
    kind = kFalseToken;
  } else if (text == "nil") {
    kind = kNilToken;
  }
}

void TextReader::readString() {
  text.clear();
  for (;;) {
    const int c = stream.get();
    if (c == '"') break;
    if (c == kEnd) {
      failAt("ombrix::TextReader::readString", "unexpected end-of-file, expecting '\"'");
    }
    if (c == '\\') {
      // An escaped character takes two places: itself and a backslash. Names have always come back
      // from a file in this form.
      text.push_back(extractEscapedChar());
      text.push_back('\\');
    } else if (c == '\n') {
      ++line;
    } else {
      text.push_back(static_cast<char>(c));
    }
  }
  endString();
}

/// What follows a string tells a property from a value.
void TextReader::endString() {
  const int c = skipSpaces();
  if (c == '=') {
    kind = kPropertyToken;
    return;
  }
  if (c != ',' && c != '}') {
    const std::string found =
        c == kEnd ? "unexpected end-of-file" : "unexpected character " + quoted(std::to_string(c));
    failAt("ombrix::TextReader::readString", found + ", expecting '=', '}' or ','");
  }
  if (c == '}') stream.unget();
  kind = kStringToken;
}

char TextReader::extractEscapedChar() {
  const int c = stream.get();
  switch (c) {
    case '"':
    case '\'':
    case '\\':
      return static_cast<char>(c);
    case 'b':
      return '\b';
    case 'f':
      return '\f';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case kEnd:
      failAt("ombrix::TextReader::extractEscapedChar", "unexpected end-of-file");
    default:
      failAt("ombrix::TextReader::extractEscapedChar",
             "'\\" + std::to_string(c) + "' is not a valid escape sequence");
  }
}

int TextReader::skipSpaces() {
  int c = stream.get();
  for (; isSpace(c); c = stream.get()) {
    if (c == '\n') ++line;
  }
  return c;
}

void TextReader::failType(const char* word) {
  failAt("ombrix::TextReader::checkType", "unexpected token, expecting " + quoted(word));
}

void TextReader::failProperty(const std::string& expected) {
  failAt("ombrix::TextReader::nextProperty",
         "unexpected property " + quoted(text) + ", expecting " + quoted(expected));
}

void TextReader::failAtEnd() {
  failAt("ombrix::TextReader::skip", "unexpected end-of-file");
}

void TextReader::failAt(const char* function, const std::string& what) const {
  fail(kInputOutput, Where{__FILE__, __LINE__, function},
       "At line " + std::to_string(line + 1) + ": " + what);
}

}  // namespace ombrix
