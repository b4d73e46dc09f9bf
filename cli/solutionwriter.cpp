#include "cli/solutionwriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
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

/// Whether the name leads to where the standard output goes, as /dev/stdout does.
bool isStandardOutput(const std::string& name) {
  struct stat named;
  struct stat standard;
  return stat(name.c_str(), &named) == 0 && fstat(STDOUT_FILENO, &standard) == 0 &&
         named.st_dev == standard.st_dev && named.st_ino == standard.st_ino;
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

SolutionFile::SolutionFile(std::string name) : fileName(std::move(name)), targetName(fileName) {
  findTarget();
  writtenName = isReplaced ? targetName + ".tmp" + std::to_string(getpid()) : targetName;
  const int mode = isReplaced ? O_CREAT | O_TRUNC : 0;
  descriptor = isStandardOutput(fileName)
                   ? dup(STDOUT_FILENO)
                   : open(writtenName.c_str(), O_WRONLY | O_CLOEXEC | mode, 0666);
  if (descriptor < 0) failWriting();
}

void SolutionFile::findTarget() {
  std::error_code error;
  const auto status = std::filesystem::status(fileName, error);
  if (!std::filesystem::exists(status)) return;
  isReplaced = std::filesystem::is_regular_file(status) && !isStandardOutput(fileName);
  const auto resolved = std::filesystem::canonical(fileName, error);
  if (isReplaced && !error) targetName = resolved.string();
}

SolutionFile::~SolutionFile() {
  if (descriptor >= 0) close(descriptor);
  if (isReplaced && !committed) unlink(writtenName.c_str());
}

void SolutionFile::commit(const std::string& text) {
  if (!writeText(text)) failWriting();
  const int closing = close(descriptor);
  descriptor = -1;
  if (closing != 0) failWriting();
  if (isReplaced && std::rename(writtenName.c_str(), targetName.c_str()) != 0) failWriting();
  committed = true;
}

bool SolutionFile::writeText(const std::string& text) const {
  // A device has nothing to bring to the disk.
  return writeAll(descriptor, text) && (!isReplaced || fsync(descriptor) == 0);
}

void SolutionFile::failWriting() const {
  throw InputError(fileName + ": cannot be written: " + std::strerror(errno));
}

}  // namespace ombrix::cli
