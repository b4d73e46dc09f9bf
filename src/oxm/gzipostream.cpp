#include "oxm/gzipostream.h"

#include "common/failure.h"

namespace ombrix {

namespace {

// Level 6 is the balance between size and speed that users know from gzip itself.
constexpr const char* kGzipMode = "wb6";

}  // namespace

GzipOstream::GzipOstream(const std::string& name, bool compressed)
    : compress(compressed), fileName(name) {
  if (compress) {
    gzHandle = gzopen(fileName.c_str(), kGzipMode);
  } else {
    file = std::fopen(fileName.c_str(), "wb");
  }
  if (gzHandle == nullptr && file == nullptr) {
    fail(kInputOutput, OMBRIX_HERE("GzipOstream::GzipOstream"), "Cannot open file " + fileName);
  }
  block.reserve(kBlockSize);
}

GzipOstream::~GzipOstream() {
  flush();
  if (compress) {
    gzclose(gzHandle);
  } else {
    std::fclose(file);
  }
}

void GzipOstream::write(std::string_view bytes) {
  while (bytes.size() > kBlockSize - block.size()) {
    const std::size_t room = kBlockSize - block.size();
    block.append(bytes.substr(0, room));
    bytes.remove_prefix(room);
    flush();
  }
  block.append(bytes);
}

void GzipOstream::flush() {
  if (compress) {
    gzwrite(gzHandle, block.data(), static_cast<unsigned>(block.size()));
  } else {
    std::fwrite(block.data(), 1, block.size(), file);
  }
  nbFlushed += block.size();
  block.clear();
}

}  // namespace ombrix
