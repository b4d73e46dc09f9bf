#include "cli/blockreader.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "cli/inputerror.h"

namespace ombrix::cli {

BlockReader::BlockReader(std::string name)
    : fileName(std::move(name)), file(gzopen(fileName.c_str(), "rb")) {
  if (file == nullptr) {
    const char* reason = errno != 0 ? std::strerror(errno) : "out of memory";
    throw InputError(fileName + ": cannot be opened: " + reason);
  }
  gzbuffer(file, 1 << 18);
}

BlockReader::~BlockReader() {
  gzclose(file);
}

void BlockReader::fill() {
  if (ended) return;
  errno = 0;
  const int count = gzread(file, buffer.data(), static_cast<unsigned>(buffer.size()));
  if (count < 0) failReading();
  position = 0;
  size = static_cast<std::size_t>(count);
  if (size < buffer.size()) {
    // A short read is the end of the file or a stream that breaks off: only gzerror tells which.
    int code = Z_OK;
    gzerror(file, &code);
    if (code < 0) failReading();
  }
  ended = size == 0;
}

void BlockReader::failReading() const {
  int code = Z_OK;
  const char* text = gzerror(file, &code);
  std::string reason = code == Z_ERRNO ? std::strerror(errno) : text;
  if (code == Z_BUF_ERROR) reason = "the gzip stream breaks off";
  // zlib puts the file name before its own texts; ours stands there already.
  if (reason.starts_with(fileName + ": ")) reason.erase(0, fileName.size() + 2);
  throw InputError(fileName + ": cannot be read: " + reason);
}

}  // namespace ombrix::cli
