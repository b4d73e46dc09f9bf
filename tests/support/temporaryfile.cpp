#include "support/temporaryfile.h"

#include <unistd.h>
#include <zlib.h>

#include <atomic>
#include <fstream>
#include <iterator>

namespace ombrix::test {
namespace {

std::filesystem::path freshPath(const std::string& extension) {
  static std::atomic<int> counter{0};
  const std::string name =
      "ombrix-" + std::to_string(getpid()) + "-" + std::to_string(counter++) + extension;
  return std::filesystem::temp_directory_path() / name;
}

}  // namespace

TemporaryFile::TemporaryFile(const std::string& contents, const std::string& extension)
    : filePath(freshPath(extension)) {
  std::ofstream(filePath, std::ios::binary) << contents;
}

TemporaryFile::~TemporaryFile() {
  std::error_code ignored;
  std::filesystem::remove_all(filePath, ignored);
}

std::string gzipped(const std::string& contents) {
  const TemporaryFile file("", ".gz");
  gzFile stream = gzopen(file.path().c_str(), "wb");
  gzwrite(stream, contents.data(), static_cast<unsigned>(contents.size()));
  gzclose(stream);
  std::ifstream input(file.path(), std::ios::binary);
  return {std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
}

}  // namespace ombrix::test
