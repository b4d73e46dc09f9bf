#include "oxm/gzipistream.h"

#include <algorithm>
#include <cstring>

#include "common/failure.h"

namespace ombrix {

GzipIstream::GzipIstream(const std::string& name)
    : gzHandle(gzopen(name.c_str(), "rb")), fileName(name) {
  if (gzHandle == nullptr) {
    fail(kInputOutput, OMBRIX_HERE("GzipIstream::GzipIstream"), "Cannot open file " + fileName);
  }
  block = std::make_unique<char[]>(kBlockSize);
}

GzipIstream::~GzipIstream() {
  gzclose(gzHandle);
}

std::size_t GzipIstream::read(char* buffer, std::size_t size) {
  std::size_t nbRead = 0;
  while (nbRead < size && (position < end || fill())) {
    const std::size_t n = std::min(size - nbRead, end - position);
    std::memcpy(buffer + nbRead, block.get() + position, n);
    position += n;
    nbRead += n;
  }
  return nbRead;
}

bool GzipIstream::fill() {
  const int n = gzread(gzHandle, block.get(), static_cast<unsigned>(kBlockSize));
  if (n < 0) failToRead();
  position = 0;
  end = static_cast<std::size_t>(n);
  return n > 0;
}

void GzipIstream::failToRead() {
  fail(kInputOutput, OMBRIX_HERE("GzipIstream::read"), "Error while reading file.");
}

}  // namespace ombrix
