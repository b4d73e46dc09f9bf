#ifndef OMBRIX_OXM_TEXTREADER_H
#define OMBRIX_OXM_TEXTREADER_H

#include <cstdint>
#include <string>

#include "oxm/tokenreader.h"

namespace ombrix {

/// Reads the text encoding. White space and commas between tokens are skipped alike. Failures name
/// the line.
class TextReader : public TokenReader {
public:
  /// Opens the file and checks its header.
  explicit TextReader(const std::string& fileName);

protected:
  void next() override;
  [[noreturn]] void failType(const char* word) override;
  [[noreturn]] void failProperty(const std::string& expected) override;
  [[noreturn]] void failAtEnd() override;
  const char* mapStartWord() const override { return "{"; }
  const char* mapEndWord() const override { return "}"; }

private:
  void readValue();
  void endWord();
  void classifyWord();
  void readString();
  void endString();
  char extractEscapedChar();
  /// The first character that is no white space; counts the lines passed.
  int skipSpaces();
  [[noreturn]] void failAt(const char* function, const std::string& what) const;

  std::int64_t line = 0;  ///< line feeds seen so far
};

}  // namespace ombrix

#endif
