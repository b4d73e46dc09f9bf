#include <cstdlib>
#include <string_view>

#include "cli/inputerror.h"
#include "cli/opbreader.h"
#include "fuzz/memoryfile.h"

// The bytes are a model in the OPB format, plain or gzip.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static ombrix::fuzz::MemoryFile file;
  file.write(data, size);
  try {
    ombrix::cli::OpbReader::read(file.path());
  } catch (const ombrix::cli::InputError& error) {
    if (std::string_view(error.what()).empty()) std::abort();
  }
  return 0;
}
