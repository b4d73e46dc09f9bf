#include "cli/solutionwriter.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <utility>

#include "cli/inputerror.h"

namespace ombrix::cli {
namespace {

constexpr std::size_t kLineLength = 100;

bool writeAll(int descriptor, const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = write(descriptor, text.data() + written, text.size() - written);
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) written += static_cast<std::size_t>(count);
  }
  return true;
}

}  // namespace

std::string valueLines(const std::vector<std::string>& names, const std::vector<bool>& values) {
  std::string text;
  std::string line = "v";
  for (std::size_t i = 0; i < names.size(); ++i) {
    line += values[i] ? " " : " -";
    line += names[i];
    if (line.size() >= kLineLength) {
      text += line + "\n";
      line = "v";
    }
  }
  if (line.size() > 1 || text.empty()) text += line + "\n";
  return text;
}

SolutionFile::SolutionFile(std::string name)
    : fileName(std::move(name)),
      temporaryName(fileName + ".tmp" + std::to_string(getpid())),
      descriptor(open(temporaryName.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
  if (descriptor < 0) failWriting();
}

SolutionFile::~SolutionFile() {
  if (descriptor >= 0) close(descriptor);
  if (!committed) unlink(temporaryName.c_str());
}

void SolutionFile::commit(const std::string& text) {
  if (!writeAll(descriptor, text) || fsync(descriptor) != 0) failWriting();
  const int closing = close(descriptor);
  descriptor = -1;
  if (closing != 0 || std::rename(temporaryName.c_str(), fileName.c_str()) != 0) failWriting();
  committed = true;
}

void SolutionFile::failWriting() const {
  throw InputError(fileName + ": cannot be written: " + std::strerror(errno));
}

}  // namespace ombrix::cli
