#include "fuzz/memoryfile.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

#include "api/ombrix.h"

namespace ombrix::fuzz {

MemoryFile::MemoryFile()
    : descriptor(memfd_create("fuzz", MFD_CLOEXEC)),
      filePath("/proc/self/fd/" + std::to_string(descriptor)) {
  if (descriptor < 0) std::abort();
}

MemoryFile::~MemoryFile() {
  close(descriptor);
}

void MemoryFile::write(const std::uint8_t* data, std::size_t size) {
  if (ftruncate(descriptor, 0) != 0) std::abort();
  std::size_t done = 0;
  while (done < size) {
    const ssize_t n = pwrite(descriptor, data + done, size - done, static_cast<off_t>(done));
    if (n <= 0) std::abort();
    done += static_cast<std::size_t>(n);
  }
}

void loadEnvironment(const std::string& path) {
  Ombrix solver;
  try {
    solver.loadEnvironment(path);
    solver.toString();
    solver.saveEnvironment("/dev/null");
  } catch (const OXException& failure) {
    if (failure.getExplanation().empty()) std::abort();
    solver.toString();
  }
}

}  // namespace ombrix::fuzz
