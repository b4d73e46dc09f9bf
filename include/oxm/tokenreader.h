#ifndef OMBRIX_OXM_TOKENREADER_H
#define OMBRIX_OXM_TOKENREADER_H

#include <cstdint>
#include <string>

#include "oxm/gzipistream.h"
#include "oxm/oxmreader.h"

namespace ombrix {

/// What the readers of both encodings share: one token of look-ahead, and every is... and next...
/// operation in terms of it. An encoding adds how a token is read and how failures are worded.
class TokenReader : public OXMReader {
public:
  explicit TokenReader(const std::string& fileName) : stream(fileName) {}

  bool isMapStart() override { return peek() == kMapStartToken; }
  bool isMapEnd() override { return peek() == kMapEndToken; }
  bool isValue() override;
  bool isProperty(const std::string& name) override;
  bool isProperty() override { return peek() == kPropertyToken; }
  bool isDouble() override { return peek() == kDoubleToken; }
  bool isChar() override;
  bool isInt() override;
  bool isLong() override { return isInt(); }
  bool isLongLong() override { return peek() == kIntegerToken; }
  bool isString() override { return peek() == kStringToken; }
  bool isBool() override { return isTrue() || isFalse(); }
  bool isTrue() override { return peek() == kTrueToken; }
  bool isFalse() override { return peek() == kFalseToken; }
  bool isNil() override { return peek() == kNilToken; }
  bool hasNext() override { return peek() != kNoToken; }

  void nextValue() override;
  void nextMapStart() override;
  void nextMapEnd() override;
  std::string nextProperty(std::string& out) override;
  void nextProperty(const std::string& expected) override;
  std::string nextString() override;
  double nextDouble() override;
  char nextChar() override;
  int nextInt() override;
  long nextLong() override;
  long long nextLongLong() override;
  bool nextBool() override;
  void nextFalse() override;
  void nextTrue() override;
  void nextNil() override;

protected:
  bool isAtEnd() override { return peek() == kNoToken && ended; }

  /// Compares the first seven bytes of the file with the magic; code 1 if they differ.
  void checkMagic(const char* magic, const char* function);

  /// Reads the next token: sets kind, and the value or text that belongs to it, or ended if there
  /// is none.
  virtual void next() = 0;
  /// Raises the failure of a token of another kind than the word says.
  [[noreturn]] virtual void failType(const char* word) = 0;
  [[noreturn]] virtual void failProperty(const std::string& expected) = 0;
  // The words for the two tokens that the encodings name differently.
  virtual const char* mapStartWord() const = 0;
  virtual const char* mapEndWord() const = 0;

  GzipIstream stream;
  bool peeked = false;  ///< the current token is read and not yet consumed
  bool ended = false;   ///< the end of the input was met in place of a token
  int kind = kNoToken;
  std::int64_t intValue = 0;
  double doubleValue = 0.0;
  std::string text;  ///< the current property name or string

private:
  int peek() {
    if (!peeked) {
      next();
      peeked = true;
    }
    return kind;
  }
  void consume(bool isExpected, const char* word) {
    if (!isExpected) failType(word);
    peeked = false;
  }
};

}  // namespace ombrix

#endif
