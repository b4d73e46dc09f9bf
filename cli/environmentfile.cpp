#include "cli/environmentfile.h"

#include <fcntl.h>
#include <unistd.h>
#include <zlib.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <new>
#include <system_error>
#include <utility>

#include "builder/modelwriter.h"
#include "cli/inputerror.h"
#include "cli/opbmodel.h"
#include "cli/opbmodelbuilder.h"
#include "cli/opbreader.h"

namespace ombrix::cli {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMagicLength = 7;

/// A failure of the library in one line, behind the file that it is about.
std::string told(const std::string& fileName, const OXException& failure) {
  const std::string& text = failure.getExplanation();
  // Failures to open name the file themselves.
  return text.ends_with(fileName) ? text : fileName + ": " + text;
}

void buildOpbFile(const std::string& fileName, Ombrix& solver) {
  const OpbModel file = OpbReader::read(fileName);
  const OpbModelBuilder builder(file, *solver.getModel());
  solver.getModel()->close();
  solver.getParam()->setObjectiveBound(0, static_cast<long long>(builder.getObjectiveLimit()));
}

/// The bytes of a file, inflated if it is gzip; -1 if it cannot be read to its end.
std::int64_t inflatedSize(const std::string& fileName) {
  gzFile file = gzopen(fileName.c_str(), "rb");
  if (file == nullptr) return -1;
  std::array<char, 65536> block;
  std::int64_t size = 0;
  int n = 0;
  while ((n = gzread(file, block.data(), static_cast<unsigned>(block.size()))) > 0) size += n;
  const bool isWhole = gzclose(file) == Z_OK && n == 0;
  return isWhole ? size : -1;
}

}  // namespace

bool isEnvironmentFile(const std::string& fileName) {
  gzFile file = gzopen(fileName.c_str(), "rb");
  if (file == nullptr) return false;
  char magic[kMagicLength + 1] = {};
  gzread(file, magic, kMagicLength);
  gzclose(file);
  return std::strcmp(magic, "<OXM01>") == 0 || std::strcmp(magic, "<OXB01>") == 0;
}

void loadEnvironmentFile(const std::string& fileName, Ombrix& solver) {
  try {
    solver.loadEnvironment(fileName);
  } catch (const OXException& failure) {
    throw InputError(told(fileName, failure));
  } catch (const std::bad_alloc&) {
    throw InputError(fileName + ": out of memory: the model needs more than this process may use");
  }
}

void loadAnyFile(const std::string& fileName, Ombrix& solver) {
  if (isEnvironmentFile(fileName)) {
    loadEnvironmentFile(fileName, solver);
  } else {
    buildOpbFile(fileName, solver);
  }
}

EnvironmentFile::EnvironmentFile(std::string name) : fileName(std::move(name)) {
  checkTarget();
  const fs::path place(target);
  const std::string mark = ".tmp" + std::to_string(getpid()) + "-";
  temporaryName = (place.parent_path() / (mark + place.filename().string())).string();
  const int descriptor =
      open(temporaryName.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (descriptor < 0) failWriting(std::strerror(errno));
  close(descriptor);
}

EnvironmentFile::~EnvironmentFile() {
  if (!committed) unlink(temporaryName.c_str());
}

/// Only a regular file may be replaced, and a link is followed rather than replaced: the name of
/// the file behind it tells the form.
void EnvironmentFile::checkTarget() {
  std::error_code error;
  target = fileName;
  if (fs::is_symlink(fileName, error)) target = fs::weakly_canonical(fileName, error).string();
  const fs::file_status status = fs::status(target, error);
  if (fs::exists(status) && !fs::is_regular_file(status)) failWriting("not a regular file");
  if (fs::path(target).filename().empty()) failWriting("not the name of a file");
}

void EnvironmentFile::commit(const Ombrix& solver) {
  checkContents(ModelWriter(solver, temporaryName).write());
  synchronize();
  std::error_code ignored;
  const fs::file_status former = fs::status(target, ignored);
  if (fs::exists(former)) fs::permissions(temporaryName, former.permissions(), ignored);
  if (std::rename(temporaryName.c_str(), target.c_str()) != 0) failWriting(std::strerror(errno));
  committed = true;
  warnIfUnreadable();
}

void EnvironmentFile::checkContents(std::uint64_t nbBytes) const {
  if (inflatedSize(temporaryName) != static_cast<std::int64_t>(nbBytes)) {
    failWriting("only part of it arrived, the disk may be full");
  }
}

void EnvironmentFile::synchronize() const {
  const int descriptor = open(temporaryName.c_str(), O_RDONLY | O_CLOEXEC);
  const bool isSafe = descriptor >= 0 && fsync(descriptor) == 0;
  const int reason = errno;
  if (descriptor >= 0) close(descriptor);
  if (!isSafe) failWriting(std::strerror(reason));
}

void EnvironmentFile::warnIfUnreadable() const {
  if (target.ends_with(".oxb") || target.ends_with(".oxb.gz")) return;
  try {
    Ombrix copy;
    copy.loadEnvironment(target);
  } catch (const OXException& failure) {
    std::string text = failure.getExplanation();
    for (char& c : text) c = c == '\n' ? ' ' : c;
    std::cerr << "ombrix: warning: " << fileName << " cannot be read back (" << text
              << "): text does not keep everything, use a name that ends with .oxb or .oxb.gz"
              << std::endl;
  }
}

void EnvironmentFile::failWriting(const std::string& reason) const {
  throw InputError(fileName + ": cannot be written: " + reason);
}

}  // namespace ombrix::cli
