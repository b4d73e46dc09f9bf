#include "fuzz/memoryfile.h"

// The bytes are an environment file, text or binary.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static ombrix::fuzz::MemoryFile file;
  file.write(data, size);
  ombrix::fuzz::loadEnvironment(file.path());
  return 0;
}
