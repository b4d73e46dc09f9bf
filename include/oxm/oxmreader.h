#ifndef OMBRIX_OXM_OXMREADER_H
#define OMBRIX_OXM_OXMREADER_H

#include <cstdint>
#include <string>

namespace ombrix {

/// The kinds of token. Both encodings share the numbers, and the binary one writes them to the
/// file.
enum TokenKind : int {
  kNoToken = 0,  ///< nothing read, end of input, or a word that means nothing
  kMapStartToken = 16,
  kMapEndToken = 17,
  kPropertyToken = 18,
  kIntegerToken = 163,
  kDoubleToken = 176,
  kNilToken = 192,
  kFalseToken = 193,
  kTrueToken = 194,
  kStringToken = 208
};

/// Reads a stream of tokens. The is... operations look at the next token without consuming it; each
/// next... operation consumes it and raises code 1 if it is of another kind.
class OXMReader {
public:
  virtual ~OXMReader() = default;

  /// Consumes the next item, a whole map with everything in it if it is a map.
  virtual void skip();

  virtual bool isMapStart() = 0;
  virtual bool isMapEnd() = 0;
  /// Neither map start nor map end nor property; also true at the end of the input.
  virtual bool isValue() = 0;
  virtual bool isProperty(const std::string& name) = 0;
  virtual bool isProperty() = 0;
  virtual bool isDouble() = 0;
  virtual bool isChar() = 0;  ///< an integer of 8 bits
  virtual bool isInt() = 0;   ///< an integer of 32 bits
  virtual bool isLong() = 0;  ///< the same as isInt
  virtual bool isLongLong() = 0;
  virtual bool isString() = 0;
  virtual bool isBool() = 0;
  virtual bool isTrue() = 0;
  virtual bool isFalse() = 0;
  virtual bool isNil() = 0;
  virtual bool hasNext() = 0;

  virtual void nextValue() = 0;
  virtual void nextMapStart() = 0;
  virtual void nextMapEnd() = 0;
  /// Consumes a property and returns its name, also in out.
  virtual std::string nextProperty(std::string& out) = 0;
  /// Consumes a property, which must have the name expected.
  virtual void nextProperty(const std::string& expected) = 0;
  virtual std::string nextString() = 0;
  virtual double nextDouble() = 0;
  virtual char nextChar() = 0;
  virtual int nextInt() = 0;
  virtual long nextLong() = 0;
  virtual long long nextLongLong() = 0;
  virtual bool nextBool() = 0;
  virtual void nextFalse() = 0;
  virtual void nextTrue() = 0;
  virtual void nextNil() = 0;

protected:
  /// No token remains and no character either; hasNext is also false for a word that means nothing.
  virtual bool isAtEnd() = 0;
  /// The failure of a skip that meets the end of the input: nothing is read for ever.
  [[noreturn]] virtual void failAtEnd() = 0;
};

}  // namespace ombrix

#endif
