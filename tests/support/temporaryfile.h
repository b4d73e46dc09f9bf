#ifndef OMBRIX_SUPPORT_TEMPORARYFILE_H
#define OMBRIX_SUPPORT_TEMPORARYFILE_H

#include <filesystem>
#include <string>

namespace ombrix::test {

/// A file of a test, in the temporary folder under a name of its own; removed at the end.
class TemporaryFile {
public:
  explicit TemporaryFile(const std::string& contents, const std::string& extension = ".opb");
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  std::string path() const { return filePath.string(); }

private:
  std::filesystem::path filePath;
};

/// The contents as a gzip stream.
std::string gzipped(const std::string& contents);

}  // namespace ombrix::test

#endif
