#include <zlib.h>

#include <cstdlib>
#include <vector>

#include "fuzz/memoryfile.h"

namespace {

std::vector<std::uint8_t> compressed(const std::uint8_t* data, std::size_t size) {
  z_stream stream{};
  constexpr int kGzipWindow = 15 + 16;
  if (deflateInit2(&stream, 1, Z_DEFLATED, kGzipWindow, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
    std::abort();
  }
  std::vector<std::uint8_t> result(deflateBound(&stream, static_cast<uLong>(size)));
  stream.next_in = const_cast<std::uint8_t*>(data);
  stream.avail_in = static_cast<uInt>(size);
  stream.next_out = result.data();
  stream.avail_out = static_cast<uInt>(result.size());
  if (deflate(&stream, Z_FINISH) != Z_STREAM_END) std::abort();
  result.resize(stream.total_out);
  deflateEnd(&stream);
  return result;
}

}  // namespace

// The first byte tells what the others are: if it is odd, the bytes of a gzip file, damaged or not;
// otherwise an environment to compress first, cut short by as many bytes as the half of it says.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static ombrix::fuzz::MemoryFile file;
  if (size == 0) return 0;
  if (data[0] % 2 == 1) {
    file.write(data + 1, size - 1);
  } else {
    std::vector<std::uint8_t> bytes = compressed(data + 1, size - 1);
    const std::size_t nbCut = data[0] / 2;
    bytes.resize(bytes.size() > nbCut ? bytes.size() - nbCut : 0);
    file.write(bytes.data(), bytes.size());
  }
  ombrix::fuzz::loadEnvironment(file.path());
  return 0;
}
