#ifndef OMBRIX_CLI_BLOCKREADER_H
#define OMBRIX_CLI_BLOCKREADER_H

#include <zlib.h>

#include <array>
#include <cstddef>
#include <string>

namespace ombrix::cli {

/// The characters of a file, plain or gzip, one at a time through a block buffer. It counts lines
/// and columns from 1, a column being one byte. A file that cannot be read, or a gzip stream that
/// ends too early or is damaged, raises an InputError that names the file.
class BlockReader {
public:
  static constexpr int kEnd = -1;

  explicit BlockReader(std::string fileName);
  ~BlockReader();
  BlockReader(const BlockReader&) = delete;
  BlockReader& operator=(const BlockReader&) = delete;

  /// The next character as 0 to 255, or kEnd.
  int peek() {
    if (position == size) fill();
    return position == size ? kEnd : static_cast<unsigned char>(buffer[position]);
  }

  /// Takes the character that peek has shown, which was not kEnd.
  void take() {
    if (buffer[position++] == '\n') {
      ++line;
      column = 1;
    } else {
      ++column;
    }
  }

  std::size_t getLine() const { return line; }
  std::size_t getColumn() const { return column; }
  const std::string& getFileName() const { return fileName; }

private:
  void fill();
  [[noreturn]] void failReading() const;

  std::string fileName;
  gzFile file;
  std::array<char, 65536> buffer{};
  std::size_t position = 0;
  std::size_t size = 0;
  bool ended = false;
  std::size_t line = 1;
  std::size_t column = 1;
};

}  // namespace ombrix::cli

#endif
