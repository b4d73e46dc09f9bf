#ifndef OMBRIX_TESTS_FUZZ_MEMORYFILE_H
#define OMBRIX_TESTS_FUZZ_MEMORYFILE_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace ombrix::fuzz {

/// A file in memory that has a name: the readers open files, and a disk would slow a fuzzer down.
class MemoryFile {
public:
  MemoryFile();
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  void write(const std::uint8_t* data, std::size_t size);
  const std::string& path() const { return filePath; }

private:
  int descriptor;
  std::string filePath;
};

/// Loads an environment into a fresh solver, as often as it likes to fail with an OXException; what
/// loads is also looked at and saved. Anything else than success or that failure ends the process.
void loadEnvironment(const std::string& path);

}  // namespace ombrix::fuzz

#endif
