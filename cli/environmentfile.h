#ifndef OMBRIX_CLI_ENVIRONMENTFILE_H
#define OMBRIX_CLI_ENVIRONMENTFILE_H

#include <ombrix/ombrix.h>

#include <cstdint>
#include <string>

namespace ombrix::cli {

/// Whether the content of a file says that it is an environment, of any form. False for a file that
/// cannot be read.
bool isEnvironmentFile(const std::string& fileName);

/// Loads an environment into a fresh solver; an InputError names the file.
void loadEnvironmentFile(const std::string& fileName, Ombrix& solver);

/// Loads an environment, or builds and closes the model of an OPB file, into a fresh solver.
void loadAnyFile(const std::string& fileName, Ombrix& solver);

/// An environment file to be written that appears whole or not at all: everything goes to a
/// temporary file beside it, is read back, and takes the name at the end. The temporary file is
/// made at once, so that a place that cannot be written is noticed before the work begins, and
/// disappears again if nothing is committed. Its name ends as that of the target, which tells the
/// form of the file.
class EnvironmentFile {
public:
  explicit EnvironmentFile(std::string fileName);
  ~EnvironmentFile();
  EnvironmentFile(const EnvironmentFile&) = delete;
  EnvironmentFile& operator=(const EnvironmentFile&) = delete;

  /// Writes the environment. What text loses may make a file that cannot be read back: that is a
  /// warning on the standard error, for the file is complete.
  void commit(const Ombrix& solver);

private:
  void checkTarget();
  void checkContents(std::uint64_t nbBytes) const;
  void synchronize() const;
  void warnIfUnreadable() const;
  [[noreturn]] void failWriting(const std::string& reason) const;

  std::string fileName;
  std::string target;  ///< the file itself where the name is that of a link
  std::string temporaryName;
  bool committed = false;
};

}  // namespace ombrix::cli

#endif
