#ifndef OMBRIX_CLI_SOLUTIONWRITER_H
#define OMBRIX_CLI_SOLUTIONWRITER_H

#include <string>
#include <vector>

namespace ombrix::cli {

/// The lines "v x1 -x2 ..." of the pseudo-Boolean competitions, each of moderate length: every
/// variable once, with a minus sign when its value is 0.
std::string valueLines(const std::vector<std::string>& names, const std::vector<bool>& values);

/// A file that appears whole or not at all: the text goes to a temporary file beside it, which
/// takes its name at the end. The temporary file is made at once, so that a place that cannot be
/// written is noticed before the work begins, and disappears again if nothing is committed. A link
/// stays and its file is replaced; a device, a pipe or the standard output is written to and never
/// replaced.
class SolutionFile {
public:
  explicit SolutionFile(std::string fileName);
  ~SolutionFile();
  SolutionFile(const SolutionFile&) = delete;
  SolutionFile& operator=(const SolutionFile&) = delete;

  void commit(const std::string& text);

private:
  void findTarget();
  bool writeText(const std::string& text) const;
  [[noreturn]] void failWriting() const;

  std::string fileName;
  std::string targetName;   ///< what the name leads to
  std::string writtenName;  ///< the temporary file, or the target itself if it is no regular file
  bool isReplaced = true;
  int descriptor;
  bool committed = false;
};

}  // namespace ombrix::cli

#endif
