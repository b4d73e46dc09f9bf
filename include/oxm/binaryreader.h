#ifndef OMBRIX_OXM_BINARYREADER_H
#define OMBRIX_OXM_BINARYREADER_H

#include <cstdint>
#include <string>
#include <vector>

#include "oxm/tokenreader.h"

namespace ombrix {

/// Reads the binary encoding. The width that an integer had in the file does not matter to the
/// reader of tokens, nor whether a string came from the cache.
class BinaryReader : public TokenReader {
public:
  /// Opens the file and checks its magic.
  explicit BinaryReader(const std::string& fileName);

protected:
  void next() override;
  [[noreturn]] void failType(const char* word) override;
  [[noreturn]] void failProperty(const std::string& expected) override;
  [[noreturn]] void failAtEnd() override;
  const char* mapStartWord() const override { return "open-map"; }
  const char* mapEndWord() const override { return "end-map"; }

private:
  /// Little-endian bytes, all of which must be there.
  std::uint64_t readBytes(int nbBytes);
  void readText();
  void readCachedString();
  void readInteger(int nbBytes);

  std::vector<std::string> cache;
  int tag = 0;  ///< of the current token, 0 for none
};

}  // namespace ombrix

#endif
